#include "Program.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

using namespace testsupport;

/** The tool, or another program with its dispatcher, started with the given first word. */
Program as(const std::string& name, const std::string& path = tool("bsp").path)
{
    Program program = programAt(path);
    program.name = name;
    return program;
}

Outcome usage(const std::string& name, const std::string& listing = "")
{
    return {listing, "Usage: " + name + " <function> [arguments]\n", 1};
}

Outcome unknown(const std::string& function)
{
    return refusal("Unknown function: " + function + '\n');
}

TEST(Dispatcher, TakesTheNameThatWasTypedNotTheLinksTarget)
{
    for (const char* name : {"led", "rstate", "bsp"}) {
        EXPECT_EQ(tool(name).run().err, usage(name).err);
    }
}

TEST(Dispatcher, TakesOnlyTheTextAfterTheLastSlashEvenWhenEmpty)
{
    const Outcome led = as("/usr/local/bsp/led").run();
    EXPECT_EQ(led.err, usage("led").err);
    EXPECT_EQ(led.status, 1);
    for (const char* name : {"bsp/", "/", ""}) {
        expectGolden(as(name), {{{}, usage("")}, {{"getSlotId"}, unknown("getSlotId")}});
    }
}

TEST(Dispatcher, SurvivesACommandLineWithoutAnyWord)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator always gives a program its name";
    }
    Program program = tool("bsp");
    program.prepare = [path = program.path] {
        char* const nothing[] = {nullptr};
        ::execv(path.c_str(), nothing);
    };
    expectGolden(program, {{{}, usage("")}});
}

TEST(Dispatcher, HasNoFunctionsUnderAForeignName)
{
    expectGolden(as("foo"), {{{}, usage("foo")}, {{"getSlotId"}, unknown("getSlotId")}});
    expectGolden(as("BSP"), {{{"getSlotId"}, unknown("getSlotId")}});
}

TEST(Dispatcher, RefusesWhatIsNoFunctionAsItWasTyped)
{
    for (const char* text : {"getslotid", "getSlot", "getSlotIds", "", " getSlotId", "-h", "--help",
                             "--version", "setState", "increment", "\xC3\xA4\xFF"})
    {
        expectGolden(tool("bsp"), {{{text}, unknown(text)}});
    }
}

TEST(Dispatcher, TakesTheFirstGroupAndTheFirstFunctionOfAName)
{
    expectGolden(as("own", BSP_TEST_OWN_GROUPS_TOOL),
                 {{{},
                   usage("own", "own aNameOf20Characters_ Twenty.\n"
                                "own aNameOfMoreThan20Characters More.\n"
                                "own twice                First.\n"
                                "own twice                Second.\n")},
                  {{"aNameOf20Characters_"}, {"", "", 7}},
                  {{"twice"}, answer("first\n")}});
    expectGolden(as("empty", BSP_TEST_OWN_GROUPS_TOOL),
                 {{{}, usage("empty")}, {{"twice"}, unknown("twice")}});
}

TEST(TableOrder, NamesComeBeforeCommands)
{
    expectGolden(
        as("bsp", BSP_TEST_TABLE_ORDER_TOOL),
        {{{"clearTrafClientMode"}, {"", "command table: streams yes, name tables yes\n", 0}}});
}

} // namespace
