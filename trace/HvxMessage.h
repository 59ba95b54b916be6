/**
 * @file
 * @brief Messages on an HvxTrace channel.
 *
 * A disabled message costs one load and one comparison: nothing of its text is evaluated.
 *
 *     TRACE_MESSAGE(bspTrace, trace::Error, "Could not open file: " << name);
 *     TRACE_ENTER(bspTrace);
 *     TRACE_ENTER_WITH(bspTrace, "fd=" << fd);
 *
 * The text is a chain of insertions. errno is the caller's while the text is formatted, and again
 * after the message.
 *
 * Tracing itself fails nobody: a message for which there is no memory, here or in the trace
 * library, is dropped. The values in a text are the caller's expressions: what they do, they do,
 * and what they throw goes to the caller, as does what else the trace library might throw.
 */
#ifndef TRACE_HVXMESSAGE_H
#define TRACE_HVXMESSAGE_H

#include "ErrnoKeeper.h"
#include "HvxTrace.h"
#include "MessageText.h"
#include "TraceLevel.h"

#include <cstring>
#include <string>

namespace trace
{

/** Whether a message of that level is to be written on the channel. */
inline bool isActive(const HvxTrace& channel, HvxTraceLevel level) noexcept
{
    const HvxTraceState* state = __atomic_load_n(&channel.m_state, __ATOMIC_RELAXED);
    return state != nullptr && __atomic_load_n(&state->level, __ATOMIC_RELAXED) >= level;
}

/** Appends a text to the channel's open message. */
inline void logMsgData(HvxTrace& channel, const char* text)
{
    channel.logMsgData(text, static_cast<unsigned int>(std::strlen(text)));
}

/** Appends a text to the channel's open message. */
inline void logMsgData(HvxTrace& channel, const std::string& text)
{
    channel.logMsgData(text.data(), static_cast<unsigned int>(text.size()));
}

/** One message: first the text is formatted, then the whole message is written. */
class HvxMessage
{
public:
    HvxMessage(HvxTrace& channel, HvxTraceLevel level, const HvxTraceHeader& header) noexcept
        : m_channel(channel), m_level(level), m_header(header)
    {}

    /** Takes the text of the message. */
    MessageText& text() noexcept { return m_text; }

    /** Writes "function(): text". */
    void write();
    /** Writes "ENTER function(text)". */
    void writeEntry();

private:
    const syscalls::ErrnoKeeper m_errnoKeeper;
    HvxTrace& m_channel;
    const HvxTraceLevel m_level;
    const HvxTraceHeader& m_header;
    MessageText m_text;
};

/** Writes "ENTER function()". */
void writeEntry(HvxTrace& channel, const HvxTraceHeader& header);

} // namespace trace

// Macros, because a message site's own file, line and function go into its static header, and
// because the text must not be evaluated for a disabled message.

/** Writes "function(): text" on the channel. */
#define TRACE_MESSAGE(channel, level, ...)                                                         \
    do {                                                                                           \
        if (trace::isActive((channel), (level))) {                                                 \
            static constexpr HvxTraceHeader traceHeader{__FILE__, __LINE__, __func__};             \
            trace::HvxMessage traceMessage((channel), (level), traceHeader);                       \
            traceMessage.text() << __VA_ARGS__;                                                    \
            traceMessage.write();                                                                  \
        }                                                                                          \
    } while (false)

/** Writes "ENTER function()" on the channel, at the level of function entries. */
#define TRACE_ENTER(channel)                                                                       \
    do {                                                                                           \
        if (trace::isActive((channel), trace::Entry)) {                                            \
            static constexpr HvxTraceHeader traceHeader{__FILE__, __LINE__, __func__};             \
            trace::writeEntry((channel), traceHeader);                                             \
        }                                                                                          \
    } while (false)

/** Writes "ENTER function(argument)" on the channel, at the level of function entries. */
#define TRACE_ENTER_WITH(channel, ...)                                                             \
    do {                                                                                           \
        if (trace::isActive((channel), trace::Entry)) {                                            \
            static constexpr HvxTraceHeader traceHeader{__FILE__, __LINE__, __func__};             \
            trace::HvxMessage traceMessage((channel), trace::Entry, traceHeader);                  \
            traceMessage.text() << __VA_ARGS__;                                                    \
            traceMessage.writeEntry();                                                             \
        }                                                                                          \
    } while (false)

#endif
