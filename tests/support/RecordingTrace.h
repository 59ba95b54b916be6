/**
 * @file
 * @brief A trace library for tests: it keeps every message, and fails a test case that leaves a
 * message of level 1 unread.
 *
 * Linking it to a test replaces libqeltrace. Every channel starts at level 7.
 */
#ifndef TESTS_SUPPORT_RECORDINGTRACE_H
#define TESTS_SUPPORT_RECORDINGTRACE_H

#include "HvxTrace.h"

#include <functional>
#include <string>
#include <vector>

namespace recordingtrace
{

/** One message as the trace library got it. */
struct Message
{
    std::string channel;
    HvxTraceLevel level;
    std::string text; /**< All pieces together; for GT_printf2 the formatted text with its "\n". */
    std::vector<std::string> pieces; /**< The calls of logMsgData, one by one. */
    const HvxTraceHeader* header;
};

/** Everything recorded since the last call of this or of takeLines. */
std::vector<Message> takeMessages();

/** The same as lines "CHANNEL LEVEL TEXT", up to the given level. */
std::vector<std::string> takeLines(HvxTraceLevel maxLevel = 7);

/** The lines of that channel alone. */
std::vector<std::string> takeLinesOf(const std::string& channel);

/** Sets the level of a channel, at once and for when it is opened later. */
void setLevel(const std::string& channel, HvxTraceLevel level);

/** Makes a channel of class HvxTrace inactive (its state pointer null), or active again. */
void setActive(const std::string& channel, bool active);

/** Called for every message, before it is recorded; for looking at the world at that moment. */
void setObserver(std::function<void(const Message&)> observer);

} // namespace recordingtrace

#endif
