#include "TraceLine.h"

#include <array>
#include <climits>
#include <cstdio>
#include <ctime>

#include <unistd.h>

namespace qeltrace
{

namespace
{

const char* const CutMark = "...";

std::string currentTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, sizeof "YYYY-MM-DDThh:mm:ss"> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    std::array<char, sizeof ".uuuuuu"> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%06u",
                  static_cast<unsigned int>(now.tv_nsec / 1000) % 1000000U);
    return std::string(date.data()) + fraction.data();
}

bool isControl(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < ' ' || byte == 0x7F;
}

/** Whether a byte goes on with a character that a byte before it began, in UTF-8. */
bool isContinuation(char character)
{
    return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

/** Cuts the line between two characters so that it has at most that many bytes. */
void cut(std::string& line, std::size_t limit)
{
    if (line.size() <= limit) {
        return;
    }
    std::size_t end = limit - std::string(CutMark).size();
    while (end > 0 && isContinuation(line[end])) {
        --end;
    }
    line.resize(end);
    line += CutMark;
}

} // namespace

std::string onOneLine(const std::string& text)
{
    const std::size_t length = !text.empty() && text.back() == '\n' ? text.size() - 1 : text.size();
    std::string line;
    line.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        if (!isControl(text[i])) {
            line += text[i];
            continue;
        }
        std::array<char, sizeof "\\xHH"> escaped{};
        std::snprintf(escaped.data(), escaped.size(), "\\x%02X",
                      static_cast<unsigned int>(static_cast<unsigned char>(text[i])));
        line += escaped.data();
    }
    return line;
}

std::string makeLine(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
                     const std::string& text)
{
    std::string line = onOneLine(currentTime() + ' ' + channel + '[' + std::to_string(::getpid()) +
                                 "] " + std::to_string(level) + ' ' + header.file + ':' +
                                 std::to_string(header.line) + ' ' + text);
    cut(line, PIPE_BUF - 1);
    return line + '\n';
}

} // namespace qeltrace
