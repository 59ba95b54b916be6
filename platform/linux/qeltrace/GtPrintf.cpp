#include "HvxTrace.h"
#include "OrDrop.h"
#include "TraceChannel.h"
#include "TraceOutput.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <optional>

namespace
{

/** The text; none when it cannot be made. */
std::optional<std::string> formatText(const char* format, va_list values)
{
    va_list measured;
    va_copy(measured, values);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    const int written = std::vsnprintf(text.data(), text.size() + 1, format, values);
    // Another thread may have changed a value meanwhile.
    text.resize(static_cast<std::size_t>(std::clamp(written, 0, length)));
    return text;
}

void print(GT_TraceRecord& record, HvxTraceLevel level, const HvxTraceHeader& header,
           const char* format, va_list values)
{
    const qeltrace::TraceChannel& channel =
        qeltrace::findChannel(record.name, qeltrace::DefaultLevel);
    // From now on the caller's own level test keeps disabled messages away from here.
    __atomic_store_n(&record.level, __atomic_load_n(&channel.level, __ATOMIC_RELAXED),
                     __ATOMIC_RELAXED);
    if (!channel.writes(level)) {
        return;
    }
    if (const std::optional<std::string> text = formatText(format, values)) {
        qeltrace::emit(channel.name, level, header, *text);
    }
}

} // namespace

void GT_printf2(GT_TraceRecord* record, HvxTraceLevel level, const HvxTraceHeader* header,
                const char* format, ...)
{
    va_list values;
    va_start(values, format);
    qeltrace::doOrDrop([&] { print(*record, level, *header, format, values); });
    va_end(values);
}
