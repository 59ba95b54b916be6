/**
 * @file
 * @brief What a command costs in numbers that do not depend on how busy the machine is.
 *
 * A number that falls is entered here; one that rises needs a reason.
 */
#include "CommandTest.h"

#include <gtest/gtest.h>

#include <map>

namespace
{

using faults::ProgramRun;

struct Cost
{
    std::size_t systemCalls; /**< From the beginning of main to the end, without the heap's. */
    long pageFaults;         /**< Of the whole process; the boot loader image has 193 pages. */
};

const std::map<std::string, Cost>& costs()
{
    static const std::map<std::string, Cost> table{
        {"getHwRevision", {12, 126}},
        {"getProductId", {12, 126}},
        {"getBoardId", {12, 126}},
        {"getControlBackplane", {11, 125}},
        {"getDspType", {11, 125}},
        {"getTrafFpgaType", {18, 127}},
        {"getRadiolinkMode", {12, 127}},
        {"getTrafClientMode", {12, 127}},
        {"setRadiolinkMode", {50, 128}},
        {"clearRadiolinkMode", {57, 127}},
        {"getSlotId", {36, 131}},
        {"getSlotIdNxu4", {41, 131}},
        {"getFpgaPath", {4, 125}},
        {"getKernelRState", {29, 144}},
        {"getUbootProductInfo", {12, 319}},
        {"setStateAtOnce", {5, 127}},
        {"setStateAfterTrigger", {9, 127}},
        {"increment", {4, 125}},
        {"usage", {8, 124}},
    };
    return table;
}

/** The C library has its share in them, and so has the kernel. */
constexpr long OtherPageFaults = 12;

class CommandCostTest : public faults::CommandTest
{};

TEST_P(CommandCostTest, MakesNoMoreSystemCallsAndPageFaultsThanItHasTo)
{
    // As it is used: nothing is traced.
    ::setenv("QELTRACE_OUTPUT", "none", 1);
    ::unsetenv("QELTRACE_LEVEL");
    faults::makeBoard(GetParam());
    const ProgramRun run = faults::runWatched(words(), std::nullopt);
    const Cost& cost = costs().at(GetParam().name);
    EXPECT_EQ(run.calls.size(), cost.systemCalls);
    faults::makeBoard(GetParam());
    EXPECT_LE(faults::run(words()).pageFaults, cost.pageFaults + OtherPageFaults);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandCostTest, testing::ValuesIn(faults::commands()),
                         [](const auto& chosen) { return chosen.param.name; });

} // namespace
