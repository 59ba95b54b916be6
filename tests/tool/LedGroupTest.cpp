#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using namespace testsupport;

/** A command on a board whose LEDs have nothing in their files, and what the LED has then. */
struct Setting
{
    Golden golden;
    std::string led;
    std::string state;
};

std::string stateFile(const std::string& name)
{
    return "/sys/class/leds/" + name + "/korvanta_state";
}

void makeLeds()
{
    for (const char* name : {"yellow", "red", "green"}) {
        std::filesystem::create_directories(std::string("/sys/class/leds/") + name);
        writeFile(stateFile(name), "");
    }
}

const Outcome Failed = refusal("Error: failed to set LED state.\n");
const Outcome SetStateUsage = refusal("Error: valid arguments are <LEDname> <state>\n"
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
                                      "interrupting\n");

TEST(LedGroup, SetsTheLedOrSaysWhyNot)
{
    const std::vector<Setting> table{
        {{{},
          {"led setState             Syntax: setState <ledname> <state>\n",
           "Usage: led <function> [arguments]\n", 1}},
         "green",
         ""},
        {{{"setState"}, SetStateUsage}, "green", ""},
        {{{"setState", "green"}, SetStateUsage}, "green", ""},
        {{{"setState", "purple"}, SetStateUsage}, "green", ""},
        {{{"setState", "green", "slow"}, answer()}, "green", "slow"},
        {{{"setState", "yellow", "interrupting"}, answer()}, "yellow", "interrupting"},
        {{{"setState", "yellow", "interrupting"}, answer()}, "red", ""},
        // Names are found at the beginning of the arguments, further arguments ignored.
        {{{"setState", "greenish", "slowly"}, answer()}, "green", "slow"},
        {{{"setState", "red", "fast", "steady_on"}, answer()}, "red", "fast"},
        {{{"setState", "purple", "slow"}, refusal("Error: Invalid LED (purple)\n")}, "green", ""},
        {{{"setState", "purple", "x"}, refusal("Error: Invalid LED (purple)\n")}, "green", ""},
        {{{"setState", "", "slow"}, refusal("Error: Invalid LED ()\n")}, "green", ""},
        {{{"setState", "Green", "slow"}, refusal("Error: Invalid LED (Green)\n")}, "green", ""},
        {{{"setState", "green", "x"}, refusal("Error: Invalid state (x)\n")}, "green", ""},
        {{{"setState", "green", ""}, refusal("Error: Invalid state ()\n")}, "green", ""},
    };
    for (const Setting& row : table) {
        makeLeds();
        expectGolden(tool("led"), {row.golden});
        EXPECT_EQ(readFile(stateFile(row.led)), row.state)
            << testing::PrintToString(row.golden.arguments);
    }
}

TEST(LedGroup, EnablesTheTriggerWhereTheLedLacksIt)
{
    makeLeds();
    std::filesystem::remove(stateFile("green"));
    writeFile("/sys/class/leds/green/trigger", "");
    std::filesystem::remove_all("/sys/class/leds/red");
    expectGolden(tool("led"),
                 {{{"setState", "green", "slow"}, Failed}, {{"setState", "red", "slow"}, Failed}});
    EXPECT_EQ(readFile("/sys/class/leds/green/trigger"), "korvanta");
}

} // namespace
