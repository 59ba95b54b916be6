#include "DisabledMessages.h"

#include "GtMessage.h"
#include "HvxMessage.h"

namespace disabledmessages
{

void writeNothing(HvxTrace& /*channel*/, GT_TraceRecord& /*record*/, int /*value*/) {}

void writeMessage(HvxTrace& channel, GT_TraceRecord& /*record*/, int value)
{
    TRACE_MESSAGE(channel, trace::Information, "The value is: " << value);
}

void writeEntry(HvxTrace& channel, GT_TraceRecord& /*record*/, int /*value*/)
{
    TRACE_ENTER(channel);
}

void writePrintf(HvxTrace& /*channel*/, GT_TraceRecord& record, int value)
{
    TRACE_PRINTF(record, trace::Entry, "%s(%d) called\n", __func__, value);
}

} // namespace disabledmessages
