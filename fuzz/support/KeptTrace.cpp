#include "KeptTrace.h"

#include "Expect.h"
#include "HvxTrace.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace fuzz
{

namespace
{

constexpr HvxTraceLevel All = 7;
// Another than any call leaves there: callers must keep their own.
constexpr int CarelessErrno = 99;

HvxTraceState state{{0, 0}, All};

struct Kept
{
    std::vector<std::string> messages;
    std::string open;
};

Kept& kept()
{
    static Kept& instance = *new Kept;
    return instance;
}

void keep(HvxTraceLevel level, const std::string& text)
{
    kept().messages.push_back(std::to_string(level) + ' ' + text);
}

} // namespace

std::vector<std::string> takeMessages()
{
    return std::exchange(kept().messages, {});
}

} // namespace fuzz

HvxTrace::HvxTrace(const std::string& /*name*/, HvxTraceLevel /*level*/) : m_state(&fuzz::state) {}

HvxTrace::~HvxTrace() = default;

void HvxTrace::beginLogMsg(HvxTraceLevel level, const HvxTraceHeader& /*header*/)
{
    fuzz::expectEqual("the message that is open", fuzz::kept().open, "");
    fuzz::kept().open = std::to_string(level) + ' ';
    errno = fuzz::CarelessErrno;
}

void HvxTrace::logMsgData(const char* data, unsigned int length)
{
    fuzz::kept().open.append(data, length);
    errno = fuzz::CarelessErrno;
}

void HvxTrace::logMsgData(char character)
{
    logMsgData(&character, 1);
}

void HvxTrace::endLogMsg()
{
    fuzz::kept().messages.push_back(std::exchange(fuzz::kept().open, {}));
    errno = fuzz::CarelessErrno;
}

void GT_printf2(GT_TraceRecord* record, HvxTraceLevel level, const HvxTraceHeader* /*header*/,
                const char* format, ...)
{
    record->level = fuzz::All;
    char* text = nullptr;
    va_list values;
    va_start(values, format);
    const int length = ::vasprintf(&text, format, values);
    va_end(values);
    fuzz::expect("a message can be formatted", length >= 0);
    std::string message(text, static_cast<std::size_t>(length));
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc): vasprintf's
    if (!message.empty() && message.back() == '\n') {
        message.pop_back();
    }
    fuzz::keep(level, message);
    errno = fuzz::CarelessErrno;
}
