#include "Command.h"

const std::vector<CommandGroup> commandGroups{
    {"bsp", &bspCommands},
    {"led", &ledCommands},
    {"rstate", &rstateCommands},
};
