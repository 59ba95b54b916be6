/**
 * @file
 * @brief Messages on a GT_printf2 channel.
 *
 * A disabled message costs one load and one comparison: none of its values is evaluated.
 *
 *     TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, led);
 *
 * errno is the caller's while the values are evaluated, and again after the message. GT_printf2 is
 * a C function: nothing is thrown.
 */
#ifndef TRACE_GTMESSAGE_H
#define TRACE_GTMESSAGE_H

#include "ErrnoKeeper.h"
#include "HvxTrace.h"
#include "TraceLevel.h"

namespace trace
{

/** Whether a message of that level is to be handed to the trace library. */
inline bool isActive(const GT_TraceRecord& record, HvxTraceLevel level) noexcept
{
    return __atomic_load_n(&record.level, __ATOMIC_RELAXED) >= level;
}

} // namespace trace

// A macro, because a message site's own file, line and function go into its static header, and
// because the values must not be evaluated for a disabled message.

/** Hands a printf format and its values to the trace library. */
#define TRACE_PRINTF(record, level, ...)                                                           \
    do {                                                                                           \
        if (trace::isActive((record), (level))) {                                                  \
            static constexpr HvxTraceHeader traceHeader{__FILE__, __LINE__, __func__};             \
            const syscalls::ErrnoKeeper traceErrnoKeeper;                                          \
            GT_printf2(&(record), (level), &traceHeader, __VA_ARGS__);                             \
        }                                                                                          \
    } while (false)

#endif
