#include "StandardError.h"
#include "LineWriter.h"
#include "OpenFile.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace qeltrace
{

namespace
{

bool wasOpenAtStart = false;

/** Called before any static object of the program can open a file. */
[[gnu::constructor(101)]] void lookForStandardError()
{
    wasOpenAtStart = ::fcntl(STDERR_FILENO, F_GETFD) != -1;
}

bool sendLine(const std::string& line)
{
    return ::send(STDERR_FILENO, line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL) ==
           static_cast<ssize_t>(line.size());
}

bool hasRoom()
{
    pollfd polled{STDERR_FILENO, POLLOUT, 0};
    return ::poll(&polled, 1, 0) == 1 && (polled.revents & POLLOUT) != 0;
}

/** To a pipe or a terminal; whether writing waits is not for us to change for all who share it. */
bool writeWithoutWaiting(const std::string& line)
{
    const syscalls::FileDescriptor own =
        openFile("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY);
    if (own.isOpen()) {
        return writeLine(own.get(), line);
    }
    // It may be another user's.
    return hasRoom() && writeLine(STDERR_FILENO, line);
}

} // namespace

bool writeToStandardError(const std::string& line)
{
    struct stat status
    {};
    if (!wasOpenAtStart || ::fstat(STDERR_FILENO, &status) != 0) {
        return true;
    }
    if (S_ISSOCK(status.st_mode)) {
        return sendLine(line);
    }
    if (S_ISREG(status.st_mode)) {
        return writeLine(STDERR_FILENO, line);
    }
    return writeWithoutWaiting(line);
}

} // namespace qeltrace
