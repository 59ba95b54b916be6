#ifndef PLATFORM_LINUX_CONFIG_CONFIGTRACE_H
#define PLATFORM_LINUX_CONFIG_CONFIGTRACE_H

#include "HvxTrace.h"

namespace nxuconfig
{

/** The store's channel. */
extern GT_TraceRecord configTrace;

} // namespace nxuconfig

#endif
