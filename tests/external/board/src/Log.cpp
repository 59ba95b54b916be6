// The sample board's trace library writes nothing.

#include "HvxTrace.h"

HvxTrace::HvxTrace(const std::string&, HvxTraceLevel) : m_state(nullptr) {}
HvxTrace::~HvxTrace() = default;
void HvxTrace::beginLogMsg(HvxTraceLevel, const HvxTraceHeader&) {}
void HvxTrace::logMsgData(const char*, unsigned int) {}
void HvxTrace::logMsgData(char) {}
void HvxTrace::endLogMsg() {}

void GT_printf2(GT_TraceRecord* record, HvxTraceLevel, const HvxTraceHeader*, const char*, ...)
{
    record->level = 0;
}
