#ifndef SYSCALLS_FILEDESCRIPTOR_H
#define SYSCALLS_FILEDESCRIPTOR_H

#include "ErrnoKeeper.h"

#include <utility>

#include <unistd.h>

namespace syscalls
{

/** Owner of an open file descriptor; -1 is none. Closing it leaves errno alone. */
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) noexcept : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (isOpen()) {
            const ErrnoKeeper errnoKeeper;
            ::close(m_fd);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }

    bool isOpen() const noexcept { return m_fd != -1; }
    int get() const noexcept { return m_fd; }
    /** Gives the descriptor away; the caller closes it. */
    int release() noexcept { return std::exchange(m_fd, -1); }

private:
    int m_fd = -1;
};

} // namespace syscalls

#endif
