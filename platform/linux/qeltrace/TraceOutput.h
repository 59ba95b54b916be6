#ifndef PLATFORM_LINUX_QELTRACE_TRACEOUTPUT_H
#define PLATFORM_LINUX_QELTRACE_TRACEOUTPUT_H

#include "HvxTrace.h"

#include <string>

namespace qeltrace
{

/** Writes one message as one line to where the settings say. */
void emit(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
          const std::string& text);

} // namespace qeltrace

#endif
