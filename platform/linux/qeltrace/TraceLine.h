#ifndef PLATFORM_LINUX_QELTRACE_TRACELINE_H
#define PLATFORM_LINUX_QELTRACE_TRACELINE_H

#include "HvxTrace.h"

#include <string>

namespace qeltrace
{

/**
 * The line that a message becomes: time, channel, process, level, file and line, text.
 *
 * It ends with its only newline, and is no longer than what a pipe takes in one piece.
 */
std::string makeLine(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
                     const std::string& text);

} // namespace qeltrace

#endif
