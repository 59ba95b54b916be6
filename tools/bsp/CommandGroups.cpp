#include "Command.h"

namespace
{

const std::vector<Command> bspCommands{};
const std::vector<Command> ledCommands{};
const std::vector<Command> rstateCommands{};

} // namespace

const std::vector<CommandGroup> commandGroups{
    {"bsp", &bspCommands},
    {"led", &ledCommands},
    {"rstate", &rstateCommands},
};
