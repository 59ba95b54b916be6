#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using testsupport::Outcome;

/** The tool on a board directory, with a reset register of that word. */
class SlotCommand : public testing::Test
{
protected:
    SlotCommand()
    {
        // No hardware variant has this code; its platform word says Nxu4.
        testsupport::writeFile(m_board.file("eeprom"),
                               std::string("\xFE\0\xFE\xFE\xFE\xFE\xFE\xFE", 8));
        testsupport::writeFile(m_board.file("top.dtcm0"), std::string(32768, '\x5A'));
        setResetCause(0);
    }

    void setResetCause(std::uint32_t cause)
    {
        testsupport::writeFile(m_board.file("top.sys_ctrl0"),
                               testsupport::bytesOf(cause) + std::string(60, '\0'));
    }

    Outcome getSlotId(std::vector<std::string> arguments = {}) const
    {
        arguments.insert(arguments.begin(), "getSlotId");
        testsupport::Program program = testsupport::tool("bsp", std::move(arguments));
        program.environment = {{"BSP_BOARD_DIR", m_board.path().string()},
                               {"QELTRACE_OUTPUT", "none"}};
        return program.run();
    }

    testsupport::TemporaryDirectory m_board;
};

TEST_F(SlotCommand, AnswersThatNoneIsSetAfterAColdRestart)
{
    EXPECT_EQ(getSlotId(), testsupport::answer("-1\n"));
    EXPECT_EQ(testsupport::readFile(m_board.file("top.dtcm0")).substr(0, 5),
              std::string("SLOT\0", 5));
    EXPECT_FALSE(std::filesystem::exists("/dev/shm/sem.DtcmDbSharedSem"));
    EXPECT_FALSE(std::filesystem::exists("/dev/shm/DtcmSync"));
}

TEST_F(SlotCommand, AnswersWhatIsStored)
{
    EXPECT_EQ(getSlotId(), testsupport::answer("-1\n"));
    for (const std::int32_t id : {5, 0, -2147483647 - 1}) {
        std::string area = testsupport::readFile(m_board.file("top.dtcm0"));
        area.replace(16, sizeof(id), testsupport::bytesOf(id));
        testsupport::writeFile(m_board.file("top.dtcm0"), area);
        setResetCause(1);
        EXPECT_EQ(getSlotId(), testsupport::answer(std::to_string(id) + "\n"));
    }
    setResetCause(0);
    EXPECT_EQ(getSlotId(), testsupport::answer("-1\n"));
}

TEST_F(SlotCommand, IgnoresItsArguments)
{
    EXPECT_EQ(getSlotId({"7", ""}), testsupport::answer("-1\n"));
}

TEST_F(SlotCommand, AnswersWithoutADevice)
{
    std::filesystem::remove(m_board.file("top.dtcm0"));
    EXPECT_EQ(getSlotId(), testsupport::answer("-1\n"));
}

TEST_F(SlotCommand, AnswersWithAWarmAreaThatIsTooShort)
{
    const std::string area(32767, 'x');
    testsupport::writeFile(m_board.file("top.dtcm0"), area);
    EXPECT_EQ(getSlotId(), testsupport::answer("-1\n"));
    EXPECT_EQ(testsupport::readFile(m_board.file("top.dtcm0")), area);
}

} // namespace
