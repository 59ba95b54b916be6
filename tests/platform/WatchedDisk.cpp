#include "WatchedDisk.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace testsupport
{

namespace
{

ino_t inodeOf(const std::string& path)
{
    struct stat status
    {};
    ::stat(path.c_str(), &status);
    return status.st_ino;
}

std::string pathOf(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

bool isDirectory(int fd)
{
    return std::filesystem::is_directory(pathOf(fd));
}

bool writesThrough(int fd)
{
    return (::fcntl(fd, F_GETFL) & O_DSYNC) != 0;
}

} // namespace

WatchedDisk& WatchedDisk::instance()
{
    static WatchedDisk disk;
    return disk;
}

void WatchedDisk::watch(const Board& board)
{
    m_path = board.file("config.mdb");
    m_nameIsSafe = board.has("config.mdb");
    if (m_nameIsSafe) {
        m_safe[inodeOf(m_path)] = readFile(m_path);
    }
    m_watching = true;
}

std::vector<Image> WatchedDisk::stop()
{
    m_watching = false;
    return std::exchange(m_images, {});
}

void WatchedDisk::fail(const std::string& step, int error)
{
    m_failingStep = step;
    m_failure = error;
}

bool WatchedDisk::permits(const std::string& step) const
{
    if (!m_watching || step != m_failingStep) {
        return true;
    }
    errno = m_failure;
    return false;
}

void WatchedDisk::wrote(int fd, const std::string& step, const std::string& data, off_t offset)
{
    if (!m_watching) {
        return;
    }
    if (writesThrough(fd)) {
        std::string& safe = m_safe[inodeOf(pathOf(fd))];
        safe.resize(std::max(safe.size(), static_cast<std::size_t>(offset) + data.size()));
        safe.replace(static_cast<std::size_t>(offset), data.size(), data);
    }
    takeImages(step);
}

void WatchedDisk::changed(const std::string& step)
{
    if (m_watching) {
        takeImages(step);
    }
}

void WatchedDisk::synchronised(int fd, const std::string& step)
{
    if (!m_watching) {
        return;
    }
    if (isDirectory(fd)) {
        m_nameIsSafe = true;
    } else {
        m_safe[inodeOf(pathOf(fd))] = readFile(pathOf(fd));
    }
    takeImages(step);
}

/** What is left when only the process ends now, and what when the power goes. */
void WatchedDisk::takeImages(const std::string& step)
{
    if (!std::filesystem::exists(m_path)) {
        m_images.push_back({step, std::nullopt});
        return;
    }
    m_images.push_back({step + ", process ends", readFile(m_path)});
    m_images.push_back({step + ", power goes", m_safe[inodeOf(m_path)]});
    if (!m_nameIsSafe) {
        m_images.push_back({step + ", name is lost", std::nullopt});
    }
}

namespace
{

WatchedDisk& disk()
{
    return WatchedDisk::instance();
}

const char* nameOfWrite(int fd)
{
    return writesThrough(fd) ? "write through" : "write";
}

std::string bytesOf(const void* data, std::size_t size)
{
    return {static_cast<const char*>(data), size};
}

} // namespace

// The names with 64 are the ones of large files; the others take a long.
extern "C"
{
    ssize_t __real_pwrite64(int fd, const void* data, size_t size, off64_t offset);
    ssize_t __real_writev(int fd, const iovec* pieces, int count);
    int __real_fdatasync(int fd);
    int __real_fsync(int fd);
    int __real_rename(const char* from, const char* to);
    int __real_ftruncate64(int fd, off64_t size);

    ssize_t __wrap_pwrite(int fd, const void* data, size_t size, long offset);
    ssize_t __wrap_pwrite64(int fd, const void* data, size_t size, off64_t offset);
    ssize_t __wrap_writev(int fd, const iovec* pieces, int count);
    int __wrap_fdatasync(int fd);
    int __wrap_fsync(int fd);
    int __wrap_rename(const char* from, const char* to);
    int __wrap_ftruncate(int fd, long size);
    int __wrap_ftruncate64(int fd, off64_t size);
}

ssize_t __wrap_pwrite64(int fd, const void* data, size_t size, off64_t offset)
{
    const std::string step = nameOfWrite(fd);
    if (!disk().permits(step)) {
        return -1;
    }
    const ssize_t result = __real_pwrite64(fd, data, size, offset);
    disk().wrote(fd, step, bytesOf(data, size), static_cast<off_t>(offset));
    return result;
}

ssize_t __wrap_pwrite(int fd, const void* data, size_t size, long offset)
{
    return __wrap_pwrite64(fd, data, size, offset);
}

ssize_t __wrap_writev(int fd, const iovec* pieces, int count)
{
    if (!disk().permits("write")) {
        return -1;
    }
    const ssize_t result = __real_writev(fd, pieces, count);
    disk().changed("write");
    return result;
}

int __wrap_fdatasync(int fd)
{
    if (!disk().permits("sync")) {
        return -1;
    }
    const int result = __real_fdatasync(fd);
    disk().synchronised(fd, "sync");
    return result;
}

int __wrap_fsync(int fd)
{
    const std::string step = isDirectory(fd) ? "sync directory" : "sync all";
    if (!disk().permits(step)) {
        return -1;
    }
    const int result = __real_fsync(fd);
    disk().synchronised(fd, step);
    return result;
}

int __wrap_rename(const char* from, const char* to)
{
    if (!disk().permits("rename")) {
        return -1;
    }
    const int result = __real_rename(from, to);
    disk().changed("rename");
    return result;
}

int __wrap_ftruncate64(int fd, off64_t size)
{
    if (!disk().permits("resize")) {
        return -1;
    }
    const int result = __real_ftruncate64(fd, size);
    disk().changed("resize");
    return result;
}

int __wrap_ftruncate(int fd, long size)
{
    return __wrap_ftruncate64(fd, size);
}

} // namespace testsupport
