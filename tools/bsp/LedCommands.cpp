#include "Command.h"

#include "Led.h"

#include <iostream>

namespace
{

constexpr unsigned int LedCount = 3;   // also the number of no LED
constexpr unsigned int StateCount = 7; // also the number of no state
static_assert(LedCount == NoOfLeds && StateCount == NoOfLedStates, "the handler lists all of them");

void listLedsAndStates()
{
    std::cerr << "Error: valid arguments are <LEDname> <state>" << std::endl;
    std::cerr << "Available LEDs are:" << std::endl;
    for (unsigned int led = 0; led < LedCount; ++led) {
        std::cerr << Led_objectToName(led) << std::endl;
    }
    std::cerr << "\nAvailable states are:" << std::endl;
    for (unsigned int state = 0; state < StateCount; ++state) {
        std::cerr << Led_stateObjectToStateName(state) << std::endl;
    }
}

std::int32_t setState(std::int32_t argc, char* argv[])
{
    if (argc < 2) {
        listLedsAndStates();
        return 1;
    }
    const unsigned int led = Led_nameToObject(argv[0]);
    if (led == LedCount) {
        std::cerr << "Error: Invalid LED (" << argv[0] << ")" << std::endl;
        return 1;
    }
    const unsigned int state = Led_stateNameToStateObject(argv[1]);
    if (state == StateCount) {
        std::cerr << "Error: Invalid state (" << argv[1] << ")" << std::endl;
        return 1;
    }
    if (Led_setState(led, state) == -1) {
        std::cerr << "Error: failed to set LED state." << std::endl;
        return 1;
    }
    return 0;
}

} // namespace

const std::vector<Command> ledCommands{
    {setState, "setState", "Syntax: setState <ledname> <state>"},
};
