#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using testsupport::Outcome;
using testsupport::readFile;
using testsupport::tool;
using testsupport::writeFile;

const std::string Listing = "Error: valid arguments are <LEDname> <state>\n"
                            "Available LEDs are:\n"
                            "yellow\n"
                            "red\n"
                            "green\n"
                            "\n"
                            "Available states are:\n"
                            "steady_off\n"
                            "steady_on\n"
                            "standby_hot\n"
                            "standby_cold\n"
                            "slow\n"
                            "fast\n"
                            "interrupting\n";

/** "led setState" on a board of the test case's own. */
class LedCommand : public testing::Test
{
protected:
    LedCommand()
    {
        for (const char* name : {"yellow", "red", "green"}) {
            std::filesystem::create_directories(std::string("/sys/class/leds/") + name);
            writeFile(stateFile(name), "");
        }
    }

    static std::string stateFile(const std::string& name)
    {
        return "/sys/class/leds/" + name + "/korvanta_state";
    }

    static Outcome setState(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "setState");
        return tool("led", arguments).run();
    }

    static void expectRefused(const std::vector<std::string>& arguments, const std::string& error)
    {
        const Outcome outcome = setState(arguments);
        EXPECT_EQ(outcome.err, error);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.status, 1);
    }

    static void expectSilentSuccess(const std::vector<std::string>& arguments)
    {
        const Outcome outcome = setState(arguments);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.status, 0);
    }
};

TEST_F(LedCommand, IsListed)
{
    const Outcome outcome = tool("led").run();
    EXPECT_EQ(outcome.err, "Usage: led <function> [arguments]\n");
    EXPECT_EQ(outcome.out, "led setState             Syntax: setState <ledname> <state>\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(LedCommand, ListsLedsAndStatesWithTooFewArguments)
{
    expectRefused({}, Listing);
    expectRefused({"green"}, Listing);
    expectRefused({"purple"}, Listing);
}

TEST_F(LedCommand, SetsTheLed)
{
    expectSilentSuccess({"green", "slow"});
    EXPECT_EQ(readFile(stateFile("green")), "slow");
    expectSilentSuccess({"yellow", "interrupting"});
    EXPECT_EQ(readFile(stateFile("yellow")), "interrupting");
    EXPECT_EQ(readFile(stateFile("red")), "");
}

TEST_F(LedCommand, FindsNamesAtTheBeginningOfTheArguments)
{
    expectSilentSuccess({"greenish", "slowly"});
    EXPECT_EQ(readFile(stateFile("green")), "slow");
}

TEST_F(LedCommand, IgnoresFurtherArguments)
{
    expectSilentSuccess({"red", "fast", "steady_on"});
    EXPECT_EQ(readFile(stateFile("red")), "fast");
}

TEST_F(LedCommand, RefusesAnUnknownLedFirst)
{
    expectRefused({"purple", "slow"}, "Error: Invalid LED (purple)\n");
    expectRefused({"purple", "nonsense"}, "Error: Invalid LED (purple)\n");
    expectRefused({"", "slow"}, "Error: Invalid LED ()\n");
    expectRefused({"Green", "slow"}, "Error: Invalid LED (Green)\n");
}

TEST_F(LedCommand, RefusesAnUnknownState)
{
    expectRefused({"green", "nonsense"}, "Error: Invalid state (nonsense)\n");
    expectRefused({"green", ""}, "Error: Invalid state ()\n");
    EXPECT_EQ(readFile(stateFile("green")), "");
}

TEST_F(LedCommand, EnablesTheTriggerWhereTheLedLacksIt)
{
    std::filesystem::remove(stateFile("green"));
    writeFile("/sys/class/leds/green/trigger", "");
    expectRefused({"green", "slow"}, "Error: failed to set LED state.\n");
    EXPECT_EQ(readFile("/sys/class/leds/green/trigger"), "korvanta");
}

TEST_F(LedCommand, ReportsAFailure)
{
    std::filesystem::remove_all("/sys/class/leds/red");
    expectRefused({"red", "slow"}, "Error: failed to set LED state.\n");
}

} // namespace
