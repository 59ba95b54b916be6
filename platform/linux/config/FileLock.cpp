#include "FileLock.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>

namespace nxuconfig
{

namespace
{

bool isWritable(int fd)
{
    return (::fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

/** Sets the lock of the whole file; false with errno set when that fails. */
bool setLock(int fd, short type)
{
    struct flock lock
    {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    int result = 0;
    do {
        result = ::fcntl(fd, F_SETLKW, &lock);
    } while (result == -1 && errno == EINTR);
    return result == 0;
}

} // namespace

FileLock::FileLock(int fd) : m_fd(fd)
{
    // Readers that shared it could keep writers waiting for ever.
    if (!setLock(fd, isWritable(fd) ? F_WRLCK : F_RDLCK)) {
        throw std::system_error(errno, std::generic_category(), "cannot lock");
    }
}

FileLock::~FileLock()
{
    setLock(m_fd, F_UNLCK);
}

} // namespace nxuconfig
