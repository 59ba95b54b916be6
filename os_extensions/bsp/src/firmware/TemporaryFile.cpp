#include "firmware/TemporaryFile.h"

#include "FileDescriptor.h"

#include <cerrno>
#include <chrono>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os::bsp
{

namespace
{

using std::chrono::milliseconds;

// O_NONBLOCK and O_NOCTTY: what is there may change while one looks at it.
constexpr int CommonFlags = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/** How long the one who uses the file is waited for. */
class Patience
{
public:
    bool isOver() const { return now() - m_begin >= std::chrono::seconds(10); }

private:
    static std::chrono::nanoseconds now()
    {
        struct timespec time = {};
        ::clock_gettime(CLOCK_MONOTONIC, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    const std::chrono::nanoseconds m_begin = now();
};

void sleepFor(milliseconds duration)
{
    const struct timespec time = {0, static_cast<long>(std::chrono::nanoseconds(duration).count())};
    ::nanosleep(&time, nullptr);
}

bool lock(int fd)
{
    int result = 0;
    do {
        result = ::flock(fd, LOCK_EX | LOCK_NB);
    } while (result == -1 && errno == EINTR);
    return result == 0;
}

bool isSame(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool isNamed(const struct stat& file, const char* path)
{
    struct stat named = {};
    return ::lstat(path, &named) == 0 && isSame(named, file);
}

/** Takes the name away, unless the file has lost it already. */
bool removeName(const struct stat& file, const char* path)
{
    return !isNamed(file, path) || ::unlink(path) == 0 || errno == ENOENT;
}

/** Gives up the file that this call made. */
void giveUp(int fd, const char* path)
{
    struct stat file = {};
    if (::fstat(fd, &file) == 0) {
        removeName(file, path);
    } else {
        ::unlink(path);
    }
    // Closing would not unlock a file that a child process has inherited.
    ::flock(fd, LOCK_UN);
}

/** Locks the file that this call made. Returns 0, or why that cannot be used. */
int claim(int fd, const char* path)
{
    struct stat made = {};
    if (!lock(fd) || ::fstat(fd, &made) != 0) {
        return errno;
    }
    // Before it was locked, somebody may have removed it as one that was left behind.
    return isNamed(made, path) ? 0 : EWOULDBLOCK;
}

/** Makes the file, locked. On failure errno is EEXIST when there is one. */
syscalls::FileDescriptor make(const char* path)
{
    // Nobody else may write to it: it is going to be mapped.
    constexpr mode_t Mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    syscalls::FileDescriptor file(::open(path, O_RDWR | O_CREAT | O_EXCL | CommonFlags, Mode));
    const int error = file.isOpen() ? claim(file.get(), path) : 0;
    if (error == 0) {
        return file;
    }
    giveUp(file.get(), path);
    errno = error;
    return syscalls::FileDescriptor(-1);
}

/**
 * Whether another user's file, which this call has locked, was left behind. Who has just made one
 * locks it soon; on a busy board that takes a while.
 */
bool isLeftBehind(int fd, const struct stat& file, const char* path, const Patience& patience)
{
    for (int looks = 0; looks < 20 && !patience.isOver(); ++looks) {
        ::flock(fd, LOCK_UN);
        sleepFor(milliseconds(50));
        if (!lock(fd) || !isNamed(file, path)) {
            return false;
        }
    }
    return true;
}

/** Removes the named file, which nobody had locked. Returns false when that is futile. */
bool removeUnused(int fd, const struct stat& named, const char* path, const Patience& patience)
{
    struct stat file = {};
    if (::fstat(fd, &file) != 0) {
        return false;
    }
    if (!isSame(file, named)) {
        return true;
    }
    // One's own is emptied first, as "w+" does; but not what has another name as well.
    if (file.st_uid == ::geteuid() && file.st_nlink == 1 && ::ftruncate(fd, 0) != 0) {
        return false;
    }
    return removeName(file, path) || !isLeftBehind(fd, file, path, patience);
}

/** Waits a little for whoever uses the file, or removes it. Returns false when that is futile. */
bool makeWay(const char* path, const Patience& patience)
{
    struct stat named = {};
    if (::lstat(path, &named) != 0) {
        return errno == ENOENT;
    }
    if (!S_ISREG(named.st_mode)) {
        return false;
    }
    const int access = named.st_uid == ::geteuid() ? O_RDWR : O_RDONLY;
    const syscalls::FileDescriptor file(::open(path, access | CommonFlags));
    if (file.isOpen() && lock(file.get())) {
        return removeUnused(file.get(), named, path, patience);
    }
    if (errno != EWOULDBLOCK) {
        return errno == ENOENT;
    }
    if (patience.isOver()) {
        // The user goes on with the file, which only loses its name.
        return removeName(named, path);
    }
    sleepFor(milliseconds(2));
    return true;
}

/** Makes the file, locked, as soon as nobody else uses one of that name. */
syscalls::FileDescriptor makeAlone(const char* path)
{
    const Patience patience;
    // Somebody else may be faster again and again.
    constexpr int TriesWithoutPatience = 100;
    for (int tries = TriesWithoutPatience; tries > 0; tries -= patience.isOver() ? 1 : 0) {
        syscalls::FileDescriptor file = make(path);
        if (file.isOpen()) {
            return file;
        }
        if (errno == EWOULDBLOCK) {
            sleepFor(milliseconds(1));
        } else if (errno != EEXIST || !makeWay(path, patience)) {
            break;
        }
    }
    return syscalls::FileDescriptor(-1);
}

std::FILE* openStream(const char* path)
{
    syscalls::FileDescriptor file = makeAlone(path);
    if (!file.isOpen()) {
        return nullptr;
    }
    std::FILE* stream = ::fdopen(file.get(), "w+");
    if (stream == nullptr) {
        giveUp(file.get(), path);
        return nullptr;
    }
    file.release();
    return stream;
}

} // namespace

TemporaryFile::TemporaryFile(const char* path) : m_path(path), m_stream(openStream(path)) {}

TemporaryFile::~TemporaryFile()
{
    if (m_stream != nullptr) {
        const syscalls::ErrnoKeeper errnoKeeper;
        giveUp(::fileno(m_stream), m_path);
        static_cast<void>(std::fclose(m_stream));
    }
}

} // namespace os::bsp
