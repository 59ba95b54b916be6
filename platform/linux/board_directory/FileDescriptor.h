#ifndef PLATFORM_LINUX_BOARD_DIRECTORY_FILEDESCRIPTOR_H
#define PLATFORM_LINUX_BOARD_DIRECTORY_FILEDESCRIPTOR_H

#include <utility>

#include <unistd.h>

/** Owner of an open file descriptor; -1 is none. */
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (m_fd != -1) {
            ::close(m_fd);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }

    bool isOpen() const { return m_fd != -1; }
    int get() const { return m_fd; }
    /** Gives the descriptor away; the caller closes it. */
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd = -1;
};

#endif
