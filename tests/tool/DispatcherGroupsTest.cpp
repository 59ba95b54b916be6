#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using testsupport::Outcome;

Outcome runAs(const std::string& name, std::vector<std::string> arguments)
{
    testsupport::Program program{};
    program.path = BSP_TEST_OWN_GROUPS_TOOL;
    program.name = name;
    program.arguments = std::move(arguments);
    return program.run();
}

TEST(DispatcherGroups, ListsLongNamesWholeFromTheFirstGroupOfAName)
{
    const Outcome outcome = runAs("own", {});
    EXPECT_EQ(outcome.out, "own aNameOf20Characters_ Twenty.\n"
                           "own aNameOfMoreThan20Characters More.\n"
                           "own twice                First.\n"
                           "own twice                Second.\n");
    EXPECT_EQ(outcome.err, "Usage: own <function> [arguments]\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(DispatcherGroups, ReturnsTheHandlersResultUnchanged)
{
    EXPECT_EQ(runAs("own", {"aNameOf20Characters_"}).status, 7);
}

TEST(DispatcherGroups, CallsTheFirstFunctionOfAName)
{
    const Outcome outcome = runAs("own", {"twice"});
    EXPECT_EQ(outcome.out, "first\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(DispatcherGroups, ListsNothingOfAnEmptyGroup)
{
    const Outcome outcome = runAs("empty", {});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "Usage: empty <function> [arguments]\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(runAs("empty", {"twice"}).err, "Unknown function: twice\n");
}

} // namespace
