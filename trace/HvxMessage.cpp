#include "HvxMessage.h"

#include <cstddef>
#include <new>

// Where the platform's trace library has them.
static_assert(offsetof(HvxTrace, m_state) == 0, "the state comes first");
static_assert(offsetof(HvxTraceState, level) == 8, "the level is the third 32-bit word");

namespace trace
{

namespace
{

/** Makes the calls of the trace library for one message, which may need memory as well. */
template <typename Calls> void deliver(Calls calls)
{
    try {
        calls();
    } catch (const std::bad_alloc&) {
        // The message is dropped; what is traced goes on.
    }
}

void logMsgData(HvxTrace& channel, const MessageText& text)
{
    channel.logMsgData(text.view().data(), static_cast<unsigned int>(text.view().size()));
}

} // namespace

void HvxMessage::write()
{
    if (m_text.isLost()) {
        return;
    }
    deliver([this] {
        m_channel.beginLogMsg(m_level, m_header);
        trace::logMsgData(m_channel, m_header.function);
        trace::logMsgData(m_channel, "(): ");
        logMsgData(m_channel, m_text);
        m_channel.endLogMsg();
    });
}

void HvxMessage::writeEntry()
{
    if (m_text.isLost()) {
        return;
    }
    deliver([this] {
        m_channel.beginLogMsg(m_level, m_header);
        trace::logMsgData(m_channel, "ENTER ");
        trace::logMsgData(m_channel, m_header.function);
        m_channel.logMsgData('(');
        logMsgData(m_channel, m_text);
        m_channel.logMsgData(')');
        m_channel.endLogMsg();
    });
}

void writeEntry(HvxTrace& channel, const HvxTraceHeader& header)
{
    const syscalls::ErrnoKeeper errnoKeeper;
    deliver([&channel, &header] {
        channel.beginLogMsg(Entry, header);
        logMsgData(channel, "ENTER ");
        logMsgData(channel, header.function);
        logMsgData(channel, "()");
        channel.endLogMsg();
    });
}

} // namespace trace
