#ifndef TOOLS_BSP_RSTATECOMMANDS_H
#define TOOLS_BSP_RSTATECOMMANDS_H

#include "Command.h"

extern const Command incrementCommand;

#endif
