#ifndef BSP_SRC_BSPFILEDESCRIPTOR_H
#define BSP_SRC_BSPFILEDESCRIPTOR_H

#include "ErrnoKeeper.h"

#include <unistd.h>

namespace os
{
namespace bsp
{

/** Owns an open descriptor, or -1; closing it leaves errno alone. */
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd) noexcept : m_fd(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_fd(other.release()) {}
    ~FileDescriptor()
    {
        if (isOpen()) {
            const trace::ErrnoKeeper errnoKeeper;
            ::close(m_fd);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor& operator=(FileDescriptor&&) = delete;

    bool isOpen() const noexcept { return m_fd != -1; }
    int get() const noexcept { return m_fd; }

    /** Gives the descriptor away: the caller closes it. */
    int release() noexcept
    {
        const int fd = m_fd;
        m_fd = -1;
        return fd;
    }

private:
    int m_fd;
};

} // namespace bsp
} // namespace os

#endif
