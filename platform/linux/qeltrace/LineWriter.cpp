#include "LineWriter.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <pthread.h>
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
        if (!m_wasPending) {
            const timespec now{};
            sigtimedwait(&m_brokenPipe, nullptr, &now);
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

} // namespace

bool writeLine(int fd, const std::string& line)
{
    const BrokenPipeGuard guard;
    ssize_t written = 0;
    do {
        written = ::write(fd, line.data(), line.size());
    } while (written == -1 && errno == EINTR);
    return written == static_cast<ssize_t>(line.size());
}

} // namespace qeltrace
