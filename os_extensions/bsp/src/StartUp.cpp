/**
 * @file
 * @brief What the board functions make when a program starts: the standard streams, the name
 * tables and the trace channel, in this order.
 *
 * The linker decides in which order files have their turn, and takes an archive's in an order of
 * its own. So the streams and the tables have a priority: they are made before all objects that
 * have none, which are the channels, the tool's command tables and those of other programs.
 */
#include "BspEnumerations.h"
#include "BspTrace.h"
#include "ConstantNames.h"

#include <ios>

#define BSP_MADE_FIRST __attribute__((init_priority(1000)))

namespace os::bsp
{

namespace
{

const std::ios_base::Init standardStreams BSP_MADE_FIRST;

} // namespace

#define BSP_NAME_TABLE(ENUM, TABLE, ROWS)                                                          \
    const NameEntry TABLE[] BSP_MADE_FIRST = {ROWS(BSP_NAME_ROW, ENUM)                             \
                                                  BSP_NAME_ROW(ENUM, EndOfList)};
BSP_ENUMERATIONS(BSP_NAME_TABLE)

HvxTrace bspTrace("bsp.core", 3);

} // namespace os::bsp
