#ifndef PLATFORM_LINUX_QELTRACE_SYSTEMLOG_H
#define PLATFORM_LINUX_QELTRACE_SYSTEMLOG_H

#include "HvxTrace.h"

#include <string>

namespace qeltrace
{

/** Sends a line to the system log, without waiting. Returns false when the log does not take it. */
bool sendToSystemLog(HvxTraceLevel level, const std::string& line);

} // namespace qeltrace

#endif
