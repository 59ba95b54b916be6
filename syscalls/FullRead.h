#ifndef SYSCALLS_FULLREAD_H
#define SYSCALLS_FULLREAD_H

#include <cerrno>
#include <cstddef>

#include <sys/types.h>
#include <unistd.h>

namespace syscalls
{

/**
 * Reading until a buffer is full or the file ends, however often a signal interrupts; step by step
 * for those who report each.
 *
 * At least one step is made, even for a size of 0, so that what cannot be read is always noticed.
 */
class FullRead
{
public:
    FullRead(int fd, void* buffer, std::size_t size) noexcept
        : m_fd(fd), m_buffer(static_cast<char*>(buffer)), m_size(size)
    {}

    bool isDone() const noexcept { return m_isDone; }

    /** Reads once. Returns what read returned. */
    ssize_t step() noexcept
    {
        const ssize_t result = ::read(m_fd, m_buffer + m_have, m_size - m_have);
        m_isInterrupted = result == -1 && errno == EINTR;
        m_isFailed = result == -1 && !m_isInterrupted;
        m_have += result == -1 ? 0 : static_cast<std::size_t>(result);
        m_isDone = m_isFailed || result == 0 || m_have == m_size;
        return result;
    }

    /** Whether a signal interrupted the last step. */
    bool isInterrupted() const noexcept { return m_isInterrupted; }

    /**
     * The number of bytes read, less than the buffer's only at the end of the file; -1 after an
     * error, whatever was read before.
     */
    ssize_t result() const noexcept { return m_isFailed ? -1 : static_cast<ssize_t>(m_have); }

private:
    const int m_fd;
    char* const m_buffer;
    const std::size_t m_size;
    std::size_t m_have = 0;
    bool m_isDone = false;
    bool m_isInterrupted = false;
    bool m_isFailed = false;
};

/** Reads all at once. Returns what FullRead::result does, with errno set on an error. */
inline ssize_t readFully(int fd, void* buffer, std::size_t size) noexcept
{
    FullRead reading(fd, buffer, size);
    while (!reading.isDone()) {
        reading.step();
    }
    return reading.result();
}

} // namespace syscalls

#endif
