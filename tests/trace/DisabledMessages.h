/**
 * @file
 * @brief Messages of each kind, compiled as they are shipped.
 */
#ifndef TESTS_TRACE_DISABLEDMESSAGES_H
#define TESTS_TRACE_DISABLEDMESSAGES_H

#include "HvxTrace.h"

namespace disabledmessages
{

/** What a function that writes a message begins with. */
void writeNothing(HvxTrace& channel, GT_TraceRecord& record, int value);

void writeMessage(HvxTrace& channel, GT_TraceRecord& record, int value);
void writeEntry(HvxTrace& channel, GT_TraceRecord& record, int value);
void writePrintf(HvxTrace& channel, GT_TraceRecord& record, int value);

struct Site
{
    const char* name;
    void (*write)(HvxTrace&, GT_TraceRecord&, int);
    long instructions; /**< On this processor, without the call and the return. */
};

// Two loads, two tests and their branches; the target tests for null and branches in one.
#if defined(__x86_64__)
constexpr long OfClass = 6;
#else
constexpr long OfClass = 5;
#endif
constexpr long OfRecord = 3;

/** A number that falls is entered above; one that rises needs a reason. */
constexpr Site Sites[] = {
    {"message", writeMessage, OfClass},
    {"entry", writeEntry, OfClass},
    {"printf", writePrintf, OfRecord},
};

} // namespace disabledmessages

#endif
