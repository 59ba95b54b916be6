#ifndef TOOLS_COMMON_TRAFFICCLIENTMODE_H
#define TOOLS_COMMON_TRAFFICCLIENTMODE_H

#include "Bsp.h"

/** The traffic client mode is no longer stored; it follows from the radio-link mode. */
constexpr const char* trafficClientModeOf(os::bsp::RadiolinkMode mode)
{
    return mode == os::bsp::RadiolinkMode::Rl5 ? "Lads" : "Rlps";
}

#endif
