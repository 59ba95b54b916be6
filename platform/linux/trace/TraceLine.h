#ifndef PLATFORM_LINUX_TRACE_TRACELINE_H
#define PLATFORM_LINUX_TRACE_TRACELINE_H

#include "HvxTrace.h"

#include <string>

namespace qeltrace
{

/** The text without a newline at its end, other control characters as "\xHH". */
std::string onOneLine(const std::string& text);

/**
 * The line that a message becomes: time, channel, process, level, file and line, text.
 *
 * It ends with its only newline. What is longer than a pipe takes in one piece is cut and ends
 * with "...".
 */
std::string makeLine(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
                     const std::string& text);

} // namespace qeltrace

#endif
