/**
 * @file
 * @brief A system log of the test's own, and what else messages go to.
 */
#ifndef TESTS_PLATFORM_SYSTEMLOG_H
#define TESTS_PLATFORM_SYSTEMLOG_H

#include "FileDescriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace testsupport
{

inline sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

/** A socket of that type and path, from which is read without waiting. */
inline syscalls::FileDescriptor makeSystemLog(const std::string& path, int type)
{
    syscalls::FileDescriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const sockaddr_un address = addressOf(path);
    EXPECT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return socket;
}

inline std::vector<std::string> receiveAll(const syscalls::FileDescriptor& socket)
{
    std::vector<std::string> messages;
    std::array<char, 8192> buffer{};
    ssize_t size = 0;
    while ((size = ::recv(socket.get(), buffer.data(), buffer.size(), 0)) > 0) {
        messages.emplace_back(buffer.data(), static_cast<std::size_t>(size));
    }
    return messages;
}

/** While it lives, standard error is another file. */
class StandardErrorAs
{
public:
    explicit StandardErrorAs(int fd) : m_before(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3))
    {
        ::dup2(fd, STDERR_FILENO);
    }
    ~StandardErrorAs() { ::dup2(m_before.get(), STDERR_FILENO); }
    StandardErrorAs(const StandardErrorAs&) = delete;
    StandardErrorAs& operator=(const StandardErrorAs&) = delete;

private:
    const syscalls::FileDescriptor m_before;
};

} // namespace testsupport

#endif
