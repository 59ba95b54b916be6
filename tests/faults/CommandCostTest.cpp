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
    long pageFaults;         /**< From the program's start; the boot loader image has 193 pages. */
};

const std::map<std::string, Cost>& costs()
{
    static const std::map<std::string, Cost> table{
        {"getHwRevision", {12, 83}},
        {"getProductId", {12, 83}},
        {"getBoardId", {12, 83}},
        {"getControlBackplane", {11, 83}},
        {"getDspType", {11, 83}},
        {"getTrafFpgaType", {18, 84}},
        {"getRadiolinkMode", {12, 85}},
        {"getTrafClientMode", {12, 85}},
        {"setRadiolinkMode", {50, 85}},
        {"clearRadiolinkMode", {57, 84}},
        {"getSlotId", {36, 88}},
        {"getSlotIdNxu4", {41, 88}},
        {"getFpgaPath", {4, 83}},
        {"getKernelRState", {29, 101}},
        {"getUbootProductInfo", {12, 276}},
        {"setStateAtOnce", {5, 83}},
        {"setStateAfterTrigger", {9, 83}},
        {"increment", {4, 83}},
        {"usage", {8, 83}},
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
