// Command tables with everything that the tool's own tables have not got.

#include "Command.h"

#include <iostream>

namespace
{

std::int32_t seven(std::int32_t /*argc*/, char* /*argv*/[])
{
    return 7;
}

std::int32_t first(std::int32_t /*argc*/, char* /*argv*/[])
{
    std::cout << "first" << std::endl;
    return 0;
}

const std::vector<Command> commands{
    {seven, "aNameOf20Characters_", "Twenty."},
    {seven, "aNameOfMoreThan20Characters", "More."},
    {first, "twice", "First."},
    {seven, "twice", "Second."},
};
const std::vector<Command> none{};

} // namespace

const std::vector<CommandGroup> commandGroups{
    {"own", &commands},
    {"empty", &none},
    {"own", &none},
};
