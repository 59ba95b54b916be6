#include "Program.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

using testsupport::Outcome;
using testsupport::Program;
using testsupport::tool;

/** The tool started with the given first word. */
Outcome runAs(const std::string& name, std::vector<std::string> arguments)
{
    Program program = tool("bsp", std::move(arguments));
    program.name = name;
    return program.run();
}

void expectUnknown(const Outcome& outcome, const std::string& function)
{
    EXPECT_EQ(outcome.err, "Unknown function: " + function + "\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Dispatcher, TakesTheNameThatWasTypedNotTheLinksTarget)
{
    EXPECT_EQ(tool("led").run().err, "Usage: led <function> [arguments]\n");
    EXPECT_EQ(tool("rstate").run().err, "Usage: rstate <function> [arguments]\n");
    EXPECT_EQ(tool("bsp").run().err, "Usage: bsp <function> [arguments]\n");
}

TEST(Dispatcher, TakesOnlyTheLastComponentOfThePath)
{
    const Outcome outcome = runAs("/usr/local/bsp/led", {});
    EXPECT_EQ(outcome.err, "Usage: led <function> [arguments]\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Dispatcher, TakesTheTextAfterTheLastSlashEvenWhenEmpty)
{
    EXPECT_EQ(runAs("bsp/", {}).err, "Usage:  <function> [arguments]\n");
    EXPECT_EQ(runAs("/", {}).err, "Usage:  <function> [arguments]\n");
    EXPECT_EQ(runAs("", {}).err, "Usage:  <function> [arguments]\n");
    expectUnknown(runAs("", {"getSlotId"}), "getSlotId");
}

TEST(Dispatcher, SurvivesACommandLineWithoutAnyWord)
{
    if (std::string(BSP_TEST_EMULATOR).empty()) {
        const std::string path = tool("bsp").path;
        Program program = tool("bsp");
        program.prepare = [&path] {
            char* const nothing[] = {nullptr};
            ::execv(path.c_str(), nothing);
        };
        const Outcome outcome = program.run();
        EXPECT_EQ(outcome.err, "Usage:  <function> [arguments]\n");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.status, 1);
    } else {
        GTEST_SKIP() << "the emulator always gives a program its name";
    }
}

TEST(Dispatcher, ListsNothingUnderAForeignName)
{
    const Outcome outcome = runAs("foo", {});
    EXPECT_EQ(outcome.err, "Usage: foo <function> [arguments]\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Dispatcher, RefusesEveryFunctionUnderAForeignName)
{
    expectUnknown(runAs("foo", {"getSlotId"}), "getSlotId");
    expectUnknown(runAs("BSP", {"getSlotId"}), "getSlotId");
}

TEST(Dispatcher, RefusesWhatIsNoFunctionAsItWasTyped)
{
    for (const char* text : {"getslotid", "getSlot", "getSlotIds", "", " getSlotId", "-h", "--help",
                             "--version", "setState", "increment", "\xC3\xA4\xFF"})
    {
        expectUnknown(tool("bsp", {text}).run(), text);
    }
}

} // namespace
