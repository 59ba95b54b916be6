#include "BspTemporaryFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace os
{
namespace bsp
{

namespace
{

/** Opens what is at that name, or makes a file there. */
FileDescriptor openOrCreate(const char* path)
{
    // O_NONBLOCK and O_NOCTTY: what is there may turn out to be a device.
    constexpr int Flags = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    constexpr mode_t Mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    for (;;) {
        // First without O_CREAT: the kernel may refuse that for another user's file in a sticky
        // directory, even to root.
        FileDescriptor existing(::open(path, Flags));
        if (existing.isOpen() || errno != ENOENT) {
            return existing;
        }
        FileDescriptor created(::open(path, Flags | O_CREAT | O_EXCL, Mode));
        if (created.isOpen() || errno != EEXIST) {
            return created;
        }
    }
}

bool isRegularFile(int fd)
{
    struct stat file = {};
    return ::fstat(fd, &file) == 0 && S_ISREG(file.st_mode);
}

bool isStillNamed(int fd, const char* path)
{
    struct stat file = {};
    struct stat named = {};
    return ::fstat(fd, &file) == 0 && ::lstat(path, &named) == 0 && file.st_dev == named.st_dev &&
           file.st_ino == named.st_ino;
}

bool lock(int fd)
{
    int result = 0;
    do {
        result = ::flock(fd, LOCK_EX);
    } while (result == -1 && errno == EINTR);
    return result == 0;
}

/** The file of that name, locked; -1 when that cannot be had. */
FileDescriptor openLocked(const char* path)
{
    for (;;) {
        FileDescriptor file = openOrCreate(path);
        if (!file.isOpen() || !isRegularFile(file.get()) || !lock(file.get())) {
            return FileDescriptor(-1);
        }
        // The one that held the lock removes its file before it unlocks.
        if (isStillNamed(file.get(), path)) {
            return file;
        }
    }
}

/** A stream on a duplicate of the descriptor, so that closing it does not unlock the file. */
std::FILE* openEmptyStream(int fd)
{
    if (fd == -1 || ::ftruncate(fd, 0) != 0) {
        return nullptr;
    }
    FileDescriptor duplicate(::fcntl(fd, F_DUPFD_CLOEXEC, 0));
    std::FILE* stream = duplicate.isOpen() ? ::fdopen(duplicate.get(), "w+") : nullptr;
    if (stream != nullptr) {
        duplicate.release();
    }
    return stream;
}

} // namespace

TemporaryFile::TemporaryFile(const char* path)
    : m_path(path), m_lock(openLocked(path)), m_stream(openEmptyStream(m_lock.get()))
{}

TemporaryFile::~TemporaryFile()
{
    const trace::ErrnoKeeper errnoKeeper;
    if (m_stream != nullptr) {
        static_cast<void>(std::fclose(m_stream));
    }
    if (m_lock.isOpen()) {
        static_cast<void>(std::remove(m_path));
        // Closing would not unlock a file that a child process has inherited.
        ::flock(m_lock.get(), LOCK_UN);
    }
}

} // namespace bsp
} // namespace os
