#include "RecordingTrace.h"

#include "PlatformScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <map>
#include <mutex>
#include <thread>

namespace recordingtrace
{

namespace
{

struct OpenMessage
{
    const HvxTrace* channel;
    HvxTraceLevel level;
    const HvxTraceHeader* header;
    std::vector<std::string> pieces;
};

/** Everything the recorder knows; never destroyed, since channels are destroyed at exit. */
struct Recorder
{
    std::recursive_mutex mutex;
    std::map<std::string, HvxTraceLevel> levels;
    std::map<const HvxTrace*, std::string> names;
    std::map<const HvxTrace*, HvxTraceState> states;
    std::map<std::thread::id, std::vector<OpenMessage>> open;
    std::map<std::string, GT_TraceRecord*> records;
    std::vector<Message> messages;
    std::function<void(const Message&)> observer;

    HvxTraceLevel levelOf(const std::string& channel)
    {
        const auto found = levels.find(channel);
        return found == levels.end() ? 7 : found->second;
    }

    void add(Message message)
    {
        if (observer) {
            observer(message);
        }
        messages.push_back(std::move(message));
        // A careless trace library: whoever wants errno kept must do so itself.
        errno = 99;
    }
};

Recorder& recorder()
{
    static Recorder& instance = *new Recorder;
    return instance;
}

/** Fails a test case that left a message of level 1 unread. */
class UnexpectedErrors : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo& /*info*/) override
    {
        for (const Message& message : takeMessages()) {
            if (message.level <= 1) {
                ADD_FAILURE() << "unexpected message on " << message.channel << ": "
                              << message.text;
            }
        }
    }
};

const bool listening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new UnexpectedErrors);
    return true;
}();

std::string join(const std::vector<std::string>& pieces)
{
    std::string text;
    for (const std::string& piece : pieces) {
        text += piece;
    }
    return text;
}

} // namespace

std::vector<Message> takeMessages()
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    return std::exchange(recorder().messages, {});
}

std::vector<std::string> takeLines(HvxTraceLevel maxLevel)
{
    std::vector<std::string> lines;
    for (const Message& message : takeMessages()) {
        if (message.level <= maxLevel) {
            lines.push_back(message.channel + ' ' + std::to_string(message.level) + ' ' +
                            message.text);
        }
    }
    return lines;
}

std::vector<std::string> takeLinesOf(const std::string& channel)
{
    std::vector<std::string> lines = takeLines();
    const auto isOfAnother = [&](const std::string& line) {
        return line.rfind(channel + ' ', 0) != 0;
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isOfAnother), lines.end());
    return lines;
}

void setLevel(const std::string& channel, HvxTraceLevel level)
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    recorder().levels[channel] = level;
    for (const auto& [object, name] : recorder().names) {
        if (name == channel) {
            __atomic_store_n(&recorder().states.at(object).level, level, __ATOMIC_RELAXED);
        }
    }
    const auto record = recorder().records.find(channel);
    if (record != recorder().records.end()) {
        __atomic_store_n(&record->second->level, level, __ATOMIC_RELAXED);
    }
}

void setActive(const std::string& channel, bool active)
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    for (const auto& [object, name] : recorder().names) {
        if (name == channel) {
            auto* trace = const_cast<HvxTrace*>(
                object); // NOLINT(cppcoreguidelines-pro-type-const-cast): the map's key
            trace->m_state = active ? &recorder().states.at(object) : nullptr;
        }
    }
}

void setObserver(std::function<void(const Message&)> observer)
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    recorder().observer = std::move(observer);
}

} // namespace recordingtrace

using recordingtrace::recorder;

HvxTrace::HvxTrace(const std::string& name, HvxTraceLevel level) : m_state(nullptr)
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    EXPECT_EQ(level, 3U) << "channel " << name;
    recorder().names[this] = name;
    recorder().states[this] = HvxTraceState{{0, 0}, recorder().levelOf(name)};
    m_state = &recorder().states.at(this);
}

HvxTrace::~HvxTrace() = default;

void HvxTrace::beginLogMsg(HvxTraceLevel level, const HvxTraceHeader& header)
{
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    auto& open = recorder().open[std::this_thread::get_id()];
    for (const auto& message : open) {
        EXPECT_NE(message.channel, this) << "a message begins inside another";
    }
    open.push_back({this, level, &header, {}});
    errno = 99;
}

void HvxTrace::logMsgData(const char* data, unsigned int length)
{
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    auto& open = recorder().open[std::this_thread::get_id()];
    ASSERT_FALSE(open.empty()) << "data outside a message";
    open.back().pieces.emplace_back(data, length);
    errno = 99;
}

void HvxTrace::logMsgData(char character)
{
    logMsgData(&character, 1);
}

void HvxTrace::endLogMsg()
{
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    auto& open = recorder().open[std::this_thread::get_id()];
    ASSERT_FALSE(open.empty()) << "the end of no message";
    const recordingtrace::OpenMessage message = open.back();
    open.pop_back();
    recorder().add({recorder().names.at(this), message.level, recordingtrace::join(message.pieces),
                    message.pieces, message.header});
}

void GT_printf2(GT_TraceRecord* record, HvxTraceLevel level, const HvxTraceHeader* header,
                const char* format, ...)
{
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    recorder().records[record->name] = record;
    __atomic_store_n(&record->level, recorder().levelOf(record->name), __ATOMIC_RELAXED);

    char* text = nullptr;
    va_list values;
    va_start(values, format);
    const int length = vasprintf(&text, format, values);
    va_end(values);
    ASSERT_GE(length, 0);
    recordingtrace::Message message{record->name, level, text, {text}, header};
    free(text); // NOLINT(cppcoreguidelines-no-malloc): vasprintf's
    if (recorder().levelOf(record->name) >= level) {
        recorder().add(std::move(message));
    }
    errno = 99;
}
