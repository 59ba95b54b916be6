#ifndef SYSCALLS_ERRNOKEEPER_H
#define SYSCALLS_ERRNOKEEPER_H

#include <cerrno>

namespace syscalls
{

/** Gives errno back, at the end of its scope, the value that it had at the beginning. */
class ErrnoKeeper
{
public:
    ErrnoKeeper() noexcept : m_errno(errno) {}
    ~ErrnoKeeper() { restore(); }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

    void restore() const noexcept { errno = m_errno; }

private:
    const int m_errno;
};

} // namespace syscalls

#endif
