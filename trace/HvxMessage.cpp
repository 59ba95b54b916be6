#include "HvxMessage.h"

#include <cstddef>

// Where the platform's trace library has them.
static_assert(offsetof(HvxTrace, m_state) == 0, "the state comes first");
static_assert(offsetof(HvxTraceState, level) == 8, "the level is the third 32-bit word");

namespace trace
{

HvxMessage::HvxMessage(HvxTrace& channel, HvxTraceLevel level, const HvxTraceHeader& header)
    : m_channel(channel), m_level(level), m_header(header)
{
    // The text may quote errno, which making the stream may have changed.
    m_errnoKeeper.restore();
}

void HvxMessage::write()
{
    const std::string text = m_text.str();
    m_channel.beginLogMsg(m_level, m_header);
    logMsgData(m_channel, m_header.function);
    logMsgData(m_channel, "(): ");
    logMsgData(m_channel, text);
    m_channel.endLogMsg();
}

void HvxMessage::writeEntry()
{
    const std::string argument = m_text.str();
    m_channel.beginLogMsg(m_level, m_header);
    logMsgData(m_channel, "ENTER ");
    logMsgData(m_channel, m_header.function);
    m_channel.logMsgData('(');
    logMsgData(m_channel, argument);
    m_channel.logMsgData(')');
    m_channel.endLogMsg();
}

void writeEntry(HvxTrace& channel, const HvxTraceHeader& header)
{
    const ErrnoKeeper errnoKeeper;
    channel.beginLogMsg(Entry, header);
    logMsgData(channel, "ENTER ");
    logMsgData(channel, header.function);
    logMsgData(channel, "()");
    channel.endLogMsg();
}

} // namespace trace
