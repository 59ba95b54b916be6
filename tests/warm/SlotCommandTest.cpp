#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using namespace testsupport;

/** The tool on a board directory, with a reset register of that word. */
class SlotCommand : public testing::Test
{
protected:
    SlotCommand()
    {
        // No hardware variant has this code; its platform word says Nxu4.
        writeFile(m_board.file("eeprom"), std::string("\xFE\0\xFE\xFE\xFE\xFE\xFE\xFE", 8));
        writeFile(m_board.file("top.dtcm0"), std::string(32768, '\x5A'));
        setResetCause(0);
    }

    void setResetCause(std::uint32_t cause)
    {
        writeFile(m_board.file("top.sys_ctrl0"), bytesOf(cause) + std::string(60, '\0'));
    }

    Outcome getSlotId(std::vector<std::string> arguments = {}) const
    {
        arguments.insert(arguments.begin(), "getSlotId");
        Program program = tool("bsp", std::move(arguments));
        program.environment = {{"BSP_BOARD_DIR", m_board.path().string()},
                               {"QELTRACE_OUTPUT", "none"}};
        return program.run();
    }

    TemporaryDirectory m_board;
};

TEST_F(SlotCommand, AnswersThatNoneIsSetAfterAColdRestart)
{
    EXPECT_EQ(getSlotId(), answer("-1\n"));
    EXPECT_EQ(readFile(m_board.file("top.dtcm0")).substr(0, 5), std::string("SLOT\0", 5));
    EXPECT_FALSE(std::filesystem::exists("/dev/shm/sem.DtcmDbSharedSem"));
    EXPECT_FALSE(std::filesystem::exists("/dev/shm/DtcmSync"));
}

TEST_F(SlotCommand, AnswersWhatIsStored)
{
    EXPECT_EQ(getSlotId(), answer("-1\n"));
    for (const std::int32_t id : {5, 0, -2147483647 - 1}) {
        std::string area = readFile(m_board.file("top.dtcm0"));
        area.replace(16, sizeof(id), bytesOf(id));
        writeFile(m_board.file("top.dtcm0"), area);
        setResetCause(1);
        EXPECT_EQ(getSlotId(), answer(std::to_string(id) + "\n"));
    }
    setResetCause(0);
    EXPECT_EQ(getSlotId(), answer("-1\n"));
}

TEST_F(SlotCommand, IgnoresItsArguments)
{
    EXPECT_EQ(getSlotId({"7", ""}), answer("-1\n"));
}

TEST_F(SlotCommand, AnswersWithoutADevice)
{
    std::filesystem::remove(m_board.file("top.dtcm0"));
    EXPECT_EQ(getSlotId(), answer("-1\n"));
}

TEST_F(SlotCommand, AnswersWithAWarmAreaThatIsTooShort)
{
    const std::string area(32767, 'x');
    writeFile(m_board.file("top.dtcm0"), area);
    EXPECT_EQ(getSlotId(), answer("-1\n"));
    EXPECT_EQ(readFile(m_board.file("top.dtcm0")), area);
}

} // namespace
