#include "Command.h"

#include "BspNames.h"
#include "RState.h"

#include <iostream>

namespace
{

#define INCREMENT_TYPE_ROW(ENUM, NAME) {static_cast<int>(ENUM::NAME), #NAME},
const os::bsp::NameEntry incrementTypeNames[] = {RSTATE_INCREMENT_TYPE_ROWS(
    INCREMENT_TYPE_ROW, IncrementType) INCREMENT_TYPE_ROW(IncrementType, EndOfList)};
#undef INCREMENT_TYPE_ROW

/** The type of that name; EndOfList for any other text. */
IncrementType findIncrementType(const char* name)
{
    for (const os::bsp::NameEntry& entry : incrementTypeNames) {
        if (entry.text == name) {
            return static_cast<IncrementType>(entry.value);
        }
    }
    return IncrementType::EndOfList;
}

void listIncrementTypes()
{
    std::cerr << "Error: valid arguments are <R-state> <increment type>" << std::endl;
    std::cerr << "Available increment types are:" << std::endl;
    // Scripts know this list with its end row.
    for (const os::bsp::NameEntry& entry : incrementTypeNames) {
        std::cerr << entry.text << std::endl;
    }
}

std::int32_t increment(std::int32_t argc, char* argv[])
{
    if (argc < 1) {
        listIncrementTypes();
        return 1;
    }
    RState rstate{std::string(argv[0])};
    rstate.increment(argc == 1 ? IncrementType::Auto : findIncrementType(argv[1]));
    std::cout << rstate << std::endl;
    return 0;
}

} // namespace

const std::vector<Command> rstateCommands{
    {increment, "increment", "Increment R-state."},
};
