#ifndef TRACE_TRACELEVEL_H
#define TRACE_TRACELEVEL_H

#include "HvxTrace.h"

namespace trace
{

/** A failed system call, a failed read, invalid data. */
constexpr HvxTraceLevel Error = 1;
/** Something that the caller should know, though it is done as asked. */
constexpr HvxTraceLevel Warning = 2;
/** Something unusual that the operation survives; also the level a channel starts with. */
constexpr HvxTraceLevel Notice = 3;
/** A value that was worked out, a step that was repeated. */
constexpr HvxTraceLevel Result = 4;
/** Information about a step. */
constexpr HvxTraceLevel Information = 5;
/** Entry of a function. */
constexpr HvxTraceLevel Entry = 6;
/** Details of interest to a module's developer. */
constexpr HvxTraceLevel Detail = 7;

} // namespace trace

#endif
