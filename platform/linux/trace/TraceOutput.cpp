#include "TraceOutput.h"
#include "TraceLine.h"
#include "TraceSettings.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <mutex>

#include <fcntl.h>
#include <pthread.h>
#include <syslog.h>
#include <unistd.h>

namespace qeltrace
{

namespace
{

/** While it lives, a pipe without a reader is an error like others and ends no process. */
class BrokenPipeGuard
{
public:
    BrokenPipeGuard()
    {
        sigemptyset(&m_brokenPipe);
        sigaddset(&m_brokenPipe, SIGPIPE);
        sigset_t pending{};
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_brokenPipe, &m_before);
    }
    ~BrokenPipeGuard()
    {
        const timespec now{};
        while (!m_wasPending && sigtimedwait(&m_brokenPipe, nullptr, &now) == -1 && errno == EINTR)
        {
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

private:
    sigset_t m_brokenPipe{};
    sigset_t m_before{};
    bool m_wasPending = false;
};

/** Writes the line with one call, so that it stays whole. */
void writeLine(int fd, const std::string& line)
{
    const BrokenPipeGuard guard;
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

// Held around syslog and around each fork: a process forked in the middle of another thread's
// syslog would find the C library's lock taken for ever.
std::mutex& syslogMutex = *new std::mutex;

[[maybe_unused]] const int forkHandlers = pthread_atfork(
    [] { syslogMutex.lock(); }, [] { syslogMutex.unlock(); }, [] { syslogMutex.unlock(); });

void writeToSyslog(HvxTraceLevel level, const std::string& line)
{
    const std::lock_guard<std::mutex> guard(syslogMutex);
    syslog(LOG_USER | syslogPriority(level), "%s", line.c_str());
}

/** Appends to the file; opened for each line, so that the file can be moved away at any time. */
bool appendToFile(const std::string& fileName, const std::string& line)
{
    // A named pipe that nobody reads must not make anyone wait.
    const int fd = ::open(fileName.c_str(),
                          O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
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
