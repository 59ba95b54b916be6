/**
 * @file
 * @brief The functions of the group "bsp".
 *
 * The records are initialised at compile time, so that the tables can be built from them whatever
 * the order of initialisation.
 */
#ifndef TOOLS_BSP_BSPCOMMANDS_H
#define TOOLS_BSP_BSPCOMMANDS_H

#include "Command.h"

extern const Command getHwRevisionCommand;
extern const Command getFpgaPathCommand;
extern const Command getBoardIdCommand;
extern const Command getProductIdCommand;
extern const Command getControlBackplaneCommand;
extern const Command getDspTypeCommand;
extern const Command getRadiolinkModeCommand;
extern const Command setRadiolinkModeCommand;
extern const Command clearRadiolinkModeCommand;
extern const Command getTrafClientModeCommand;
extern const Command setTrafClientModeCommand;
extern const Command clearTrafClientModeCommand;
extern const Command getTrafFpgaTypeCommand;
extern const Command getKernelRStateCommand;
extern const Command getUbootProductInfoCommand;

#endif
