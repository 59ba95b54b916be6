#include "TraceOutput.h"
#include "TraceSettings.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

namespace qeltrace
{

namespace
{

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

/** The text on one line: without a newline at its end, control characters as "\xHH". */
std::string onOneLine(const std::string& text)
{
    const std::size_t length = !text.empty() && text.back() == '\n' ? text.size() - 1 : text.size();
    std::string line;
    for (std::size_t i = 0; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= ' ' && byte != 0x7F) {
            line += text[i];
            continue;
        }
        std::array<char, sizeof "\\xHH"> escaped{};
        std::snprintf(escaped.data(), escaped.size(), "\\x%02X", static_cast<unsigned int>(byte));
        line += escaped.data();
    }
    return line;
}

std::string makeLine(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
                     const std::string& text)
{
    std::string line = currentTime() + ' ' + channel + '[' + std::to_string(getpid()) + "] " +
                       std::to_string(level) + ' ' + header.file + ':' +
                       std::to_string(header.line) + ' ' + onOneLine(text);
    // A longer line could mix with another process's in a pipe.
    if (line.size() >= PIPE_BUF) {
        line.resize(PIPE_BUF - 1);
    }
    return line + '\n';
}

/** Writes the line with one call, so that it stays whole. */
void writeLine(int fd, const std::string& line)
{
    while (::write(fd, line.data(), line.size()) == -1 && errno == EINTR) {
    }
}

int syslogPriority(HvxTraceLevel level)
{
    if (level <= 1) {
        return LOG_ERR;
    }
    if (level <= 3) {
        return LOG_WARNING;
    }
    return level <= 5 ? LOG_INFO : LOG_DEBUG;
}

void writeToSyslog(HvxTraceLevel level, const std::string& line)
{
    syslog(LOG_USER | syslogPriority(level), "%s", line.c_str());
}

/** Appends to the file; opened for each line, so that the file can be moved away at any time. */
bool appendToFile(const std::string& fileName, const std::string& line)
{
    const int fd = ::open(fileName.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (fd == -1) {
        return false;
    }
    writeLine(fd, line);
    ::close(fd);
    return true;
}

void appendToFileOrSyslog(const std::string& fileName, HvxTraceLevel level, const std::string& line)
{
    if (appendToFile(fileName, line)) {
        return;
    }
    const int error = errno;
    static std::atomic<bool> reported{false};
    if (!reported.exchange(true)) {
        reportBadSetting("QELTRACE_OUTPUT", fileName,
                         std::strerror(error)); // NOLINT(concurrency-mt-unsafe): once
    }
    writeToSyslog(level, line);
}

} // namespace

void emit(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
          const std::string& text)
{
    const TraceSettings& settings = TraceSettings::instance();
    if (settings.output() == TraceSettings::Output::None) {
        return;
    }
    const std::string line = makeLine(channel, level, header, text);
    switch (settings.output()) {
    case TraceSettings::Output::StandardError:
        writeLine(STDERR_FILENO, line);
        break;
    case TraceSettings::Output::File:
        appendToFileOrSyslog(settings.fileName(), level, line);
        break;
    case TraceSettings::Output::Syslog:
        writeToSyslog(level, line);
        break;
    case TraceSettings::Output::None:
        break;
    }
}

} // namespace qeltrace
