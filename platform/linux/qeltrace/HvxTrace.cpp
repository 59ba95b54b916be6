#include "HvxTrace.h"
#include "OrDrop.h"
#include "TraceChannel.h"
#include "TraceOutput.h"

#include <memory>

namespace
{

/** A message between its beginning and its end; one list for each thread, newest first. */
struct OpenMessage
{
    const HvxTrace* channel;
    HvxTraceLevel level;
    const HvxTraceHeader* header;
    std::string text;
    OpenMessage* next;
    bool isWhole = true;
};

// A plain pointer: it can still be used while the thread's other objects are destroyed.
thread_local OpenMessage* openMessages = nullptr;

/** The thread's newest message on the channel; null when none was begun. */
OpenMessage* findOpenMessage(const HvxTrace* channel)
{
    OpenMessage* message = openMessages;
    while (message != nullptr && message->channel != channel) {
        message = message->next;
    }
    return message;
}

/** Takes the thread's newest message on the channel out of its list. */
std::unique_ptr<OpenMessage> takeOpenMessage(const HvxTrace* channel)
{
    OpenMessage** link = &openMessages;
    while (*link != nullptr && (*link)->channel != channel) {
        link = &(*link)->next;
    }
    std::unique_ptr<OpenMessage> message(*link);
    if (message) {
        *link = message->next;
    }
    return message;
}

} // namespace

HvxTrace::HvxTrace(const std::string& name, HvxTraceLevel level) : m_state(nullptr)
{
    qeltrace::doOrDrop([&] { m_state = &qeltrace::findChannel(name, level); });
}

HvxTrace::~HvxTrace()
{
    // The channel stays: others of its name may still write.
}

void HvxTrace::beginLogMsg(HvxTraceLevel level, const HvxTraceHeader& header)
{
    qeltrace::doOrDrop([&] {
        openMessages = new OpenMessage{this, level, &header, {}, openMessages};
    });
}

void HvxTrace::logMsgData(const char* data, unsigned int length)
{
    OpenMessage* const message = findOpenMessage(this);
    if (message != nullptr && !qeltrace::doOrDrop([&] { message->text.append(data, length); })) {
        message->isWhole = false;
    }
}

void HvxTrace::logMsgData(char character)
{
    logMsgData(&character, 1);
}

void HvxTrace::endLogMsg()
{
    const std::unique_ptr<OpenMessage> message = takeOpenMessage(this);
    const auto* const channel = static_cast<const qeltrace::TraceChannel*>(m_state);
    if (message && message->isWhole && channel != nullptr && channel->writes(message->level)) {
        qeltrace::doOrDrop([&] {
            qeltrace::emit(channel->name, message->level, *message->header, message->text);
        });
    }
}
