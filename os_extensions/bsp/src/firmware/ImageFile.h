/**
 * @file
 * @brief What all readers of image files need: the descriptor, reading, the name in messages.
 */
#ifndef BSP_SRC_FIRMWARE_IMAGEFILE_H
#define BSP_SRC_FIRMWARE_IMAGEFILE_H

#include "ErrnoKeeper.h"

#include <cstddef>

#include <sys/types.h>
#include <unistd.h>

namespace os::bsp
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

/** The text, or a stand-in for a caller's null pointer, which no stream takes. */
inline const char* printable(const char* text)
{
    return text == nullptr ? "(null)" : text;
}

/**
 * Reads until the buffer is full or the file ends, however often a signal interrupts.
 *
 * At least one read is made, even for a size of 0, so that what cannot be read is always noticed.
 *
 * @return the number of bytes read, less than @p size only at the end of the file; -1 with errno
 *         set on an error, whatever was read before
 */
ssize_t Bsp_readHelper(int fd, void* buffer, std::size_t size);

} // namespace os::bsp

#endif
