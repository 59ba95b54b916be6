#ifndef TOOLS_BSP_LEDCOMMANDS_H
#define TOOLS_BSP_LEDCOMMANDS_H

#include "Command.h"

extern const Command setStateCommand;

#endif
