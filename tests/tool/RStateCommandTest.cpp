#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using testsupport::Outcome;
using testsupport::tool;

/** What "rstate increment" prints for the arguments; it must succeed and print no error. */
std::string increment(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "increment");
    const Outcome outcome = tool("rstate", arguments).run();
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    return outcome.out;
}

TEST(RStateCommand, IsListed)
{
    const Outcome outcome = tool("rstate").run();
    EXPECT_EQ(outcome.err, "Usage: rstate <function> [arguments]\n");
    EXPECT_EQ(outcome.out, "rstate increment            Increment R-state.\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(RStateCommand, ListsTheTypesWithoutArguments)
{
    const Outcome outcome = tool("rstate", {"increment"}).run();
    EXPECT_EQ(outcome.err, "Error: valid arguments are <R-state> <increment type>\n"
                           "Available increment types are:\n"
                           "Auto\n"
                           "Revision\n"
                           "Minor\n"
                           "Major\n"
                           "EndOfList\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 1);
}

TEST(RStateCommand, StepsByAutoWithoutAType)
{
    EXPECT_EQ(increment({"R1A01"}), "R1A02\n");
    EXPECT_EQ(increment({"R1A"}), "R1B\n");
    EXPECT_EQ(increment({"R1Z"}), "R1AB\n");
    EXPECT_EQ(increment({"R1A999"}), "R1B01\n");
    EXPECT_EQ(increment({"R1ZZZZ"}), "R2A\n");
}

TEST(RStateCommand, StepsByTheTypeNamed)
{
    EXPECT_EQ(increment({"R1A01", "Auto"}), "R1A02\n");
    EXPECT_EQ(increment({"R1A05", "Revision"}), "R1A06\n");
    EXPECT_EQ(increment({"R1A", "Revision"}), "R1A\n");
    EXPECT_EQ(increment({"R1ZZZZ05", "Minor"}), "R2A01\n");
    EXPECT_EQ(increment({"R2B07", "Major"}), "R3A01\n");
    EXPECT_EQ(increment({"R1I", "Revision"}), "R1J\n");
}

TEST(RStateCommand, PrintsTheTextAsGivenForAnUnknownType)
{
    for (const char* type : {"revision", "EndOfList", "", "Autos", "Aut", "1"}) {
        EXPECT_EQ(increment({"R1A01", type}), "R1A01\n") << type;
        EXPECT_EQ(increment({"R1I", type}), "R1I\n") << type;
        EXPECT_EQ(increment({"R1A00", type}), "R1A00\n") << type;
        EXPECT_EQ(increment({"nonsense", type}), "nonsense\n") << type;
    }
}

TEST(RStateCommand, StepsWhatCanBeReadOfAnyText)
{
    EXPECT_EQ(increment({"foo"}), "R0B\n");
    EXPECT_EQ(increment({""}), "R0B\n");
    EXPECT_EQ(increment({"R"}), "R0B\n");
    EXPECT_EQ(increment({"\xC4"}), "R0B\n");
    EXPECT_EQ(increment({"R1\xC4"}), "R1B\n");
    EXPECT_EQ(increment({"R5", "Major"}), "R6A\n");
    EXPECT_EQ(increment({"R1A1000"}), "R1B01\n");
    EXPECT_EQ(increment({"R1ABCDE01"}), "R1ABCE\n");
}

TEST(RStateCommand, ReadsNumbersAsTheTargetDoes)
{
    EXPECT_EQ(increment({"R4294967297A"}), "R2147483647B\n");
    EXPECT_EQ(increment({"R99999999999A"}), "R2147483647B\n");
    EXPECT_EQ(increment({"R2147483647A", "Major"}), "R-2147483648A\n");
    EXPECT_EQ(increment({"R1A4294967296", "Minor"}), "R1B01\n");
    EXPECT_EQ(increment({"R1A4294967296", "Auto"}), "R1A\n");
}

TEST(RStateCommand, IgnoresFurtherArguments)
{
    EXPECT_EQ(increment({"R1A", "Major", "Minor"}), "R2A\n");
}

} // namespace
