#include "BspCommands.h"
#include "Command.h"
#include "LedCommands.h"
#include "RStateCommands.h"
#include "SlotCommand.h"

namespace
{

// clang-format off
const std::vector<Command> bspCommands{
    getHwRevisionCommand,
    getFpgaPathCommand,
    getBoardIdCommand,
    getProductIdCommand,
    getControlBackplaneCommand,
    getSlotIdCommand,
    getDspTypeCommand,
    getRadiolinkModeCommand,
    setRadiolinkModeCommand,
    clearRadiolinkModeCommand,
    getTrafClientModeCommand,
    setTrafClientModeCommand,
    clearTrafClientModeCommand,
    getTrafFpgaTypeCommand,
    getKernelRStateCommand,
    getUbootProductInfoCommand,
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
