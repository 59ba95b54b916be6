#include "RunTestBase.h"

namespace
{

using testing::EndsWith;

struct Case
{
    const char* product;
    const char* restart;
    const char* slotId; /**< What is left of slot id 5. */
};

void PrintTo(const Case& parameter, std::ostream* stream)
{
    *stream << parameter.product << ' ' << parameter.restart;
}

/** A program on the board sets the slot id, another one asks for it after a restart. */
class Slot : public SimulatorTest, public testing::WithParamInterface<Case>
{
protected:
    std::string slot(const Words& arguments = {}) const
    {
        const testsupport::Outcome outcome = run(wordsToRun("b", BSP_TEST_SLOT_PROGRAM, arguments));
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0);
        return outcome.out;
    }
};

TEST_P(Slot, IsKeptOrLostByARestart)
{
    expectQuiet({"create", "b", "--product", GetParam().product});
    EXPECT_EQ(slot(), "-1\n");
    EXPECT_EQ(slot({"5"}), "5\n");
    EXPECT_THAT(run({"show", "b"}).out, EndsWith("\nWarm area       1 of 32 blocks used\n"
                                                 "Block 1         SLOT\n"
                                                 "Slot id         5\n"));
    EXPECT_TRUE(entries("b/shm").empty());
    expectQuiet({"restart", "b", GetParam().restart});
    EXPECT_EQ(run(wordsToRun("b", testsupport::tool("bsp").path, {"getSlotId"})),
              testsupport::answer(std::string(GetParam().slotId) + '\n'));
}

std::string nameOf(const testing::TestParamInfo<Case>& info)
{
    return std::string(info.param.product) + '_' + info.param.restart;
}

INSTANTIATE_TEST_SUITE_P(ByRegister, Slot,
                         testing::Values(Case{"NXU4A", "warm", "5"}, Case{"NXU4A", "watchdog", "5"},
                                         Case{"NXU4A", "cold", "-1"}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(ByMarker, Slot,
                         testing::Values(Case{"KT4851_4", "warm", "5"},
                                         Case{"KT4851_4", "watchdog", "5"},
                                         Case{"KT4851_4", "cold", "-1"}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Never, Slot,
                         testing::Values(Case{"KT4766", "warm", "-1"},
                                         Case{"KT4766", "watchdog", "-1"},
                                         Case{"KT4766", "cold", "-1"}),
                         nameOf);

} // namespace
