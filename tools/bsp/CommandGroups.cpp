#include "BspCommands.h"
#include "Command.h"
#include "LedCommands.h"
#include "RStateCommands.h"

namespace
{

// clang-format off: one function a line, in the order of the listing
const std::vector<Command> bspCommands{
    getHwRevisionCommand,     getFpgaPathCommand,         getBoardIdCommand,
    getProductIdCommand,      getControlBackplaneCommand, getDspTypeCommand,
    getRadiolinkModeCommand,  setRadiolinkModeCommand,    clearRadiolinkModeCommand,
    getTrafClientModeCommand, setTrafClientModeCommand,   clearTrafClientModeCommand,
    getTrafFpgaTypeCommand,
};
// clang-format on
const std::vector<Command> ledCommands{setStateCommand};
const std::vector<Command> rstateCommands{incrementCommand};

} // namespace

const std::vector<CommandGroup> commandGroups{
    {"bsp", &bspCommands},
    {"led", &ledCommands},
    {"rstate", &rstateCommands},
};
