/**
 * @file
 * @brief The function of the group "bsp" that asks for the slot id.
 */
#ifndef TOOLS_BSP_SLOTCOMMAND_H
#define TOOLS_BSP_SLOTCOMMAND_H

#include "Command.h"

extern const Command getSlotIdCommand;

#endif
