#ifndef PLATFORM_LINUX_QELTRACE_TRACECHANNEL_H
#define PLATFORM_LINUX_QELTRACE_TRACECHANNEL_H

#include "HvxTrace.h"

#include <string>

namespace qeltrace
{

/** Level of a channel for which neither its module nor the settings ask for another. */
constexpr HvxTraceLevel DefaultLevel = 3;

/** A named channel; all that open one of the same name share it. Never destroyed. */
struct TraceChannel : HvxTraceState
{
    TraceChannel(std::string channelName, HvxTraceLevel channelLevel);

    /** Whether messages of that level are written. */
    bool writes(HvxTraceLevel messageLevel) const;

    const std::string name;
    TraceChannel* next = nullptr; /**< The one that was made before it. */
};

/** The channel of that name, made at the first call with the level set for it or @p level. */
TraceChannel& findChannel(const std::string& name, HvxTraceLevel level);

} // namespace qeltrace

#endif
