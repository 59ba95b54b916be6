#include "SystemLog.h"
#include "FileDescriptor.h"
#include "TraceText.h"

#include <cerrno>

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>

// The C library's syslog waits while the log is full.

namespace qeltrace
{

namespace
{

int priority(HvxTraceLevel level)
{
    if (level <= 1) {
        return LOG_ERR;
    }
    if (level <= 3) {
        return LOG_WARNING;
    }
    return level <= 5 ? LOG_INFO : LOG_DEBUG;
}

bool send(int socketType, const std::string& message)
{
    constexpr sockaddr_un Address{AF_UNIX, "/dev/log"};
    const syscalls::FileDescriptor socket(
        ::socket(AF_UNIX, socketType | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return socket.isOpen() &&
           ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&Address), sizeof Address) ==
               0 &&
           ::send(socket.get(), message.data(), message.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(message.size());
}

} // namespace

bool sendToSystemLog(HvxTraceLevel level, const std::string& line)
{
    // Without a time: the log puts its own, and making a local one takes a lock of the C library.
    const std::string message = '<' + std::to_string(LOG_USER | priority(level)) + '>' +
                                onOneLine(program_invocation_short_name) + ": " +
                                line.substr(0, line.find('\n'));
    // In a stream, messages end with NUL.
    return send(SOCK_DGRAM, message) || (errno == EPROTOTYPE && send(SOCK_STREAM, message + '\0'));
}

} // namespace qeltrace
