/**
 * @file
 * @brief Lets a test stand between the layer and the functions that it calls.
 *
 * A function without a hook is called as ever; a hook may call the real function itself. The test
 * must be linked with WRAP ${system_calls}.
 */
#ifndef TESTS_FIRMWARE_SYSTEMCALLS_H
#define TESTS_FIRMWARE_SYSTEMCALLS_H

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <functional>

#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <sys/types.h>
#include <zlib.h>

namespace systemcalls
{

struct Hooks
{
    std::function<int(const char*, int, mode_t)> open;
    std::function<ssize_t(int, void*, std::size_t)> read;
    std::function<off_t(int, off_t, int)> lseek;
    std::function<int(int, struct stat*)> fstat;
    std::function<int(int, int)> flock;
    std::function<int(const char*)> unlink;
    std::function<uid_t()> geteuid;
    std::function<int(clockid_t, timespec*)> clockGettime;
    std::function<int(const timespec*, timespec*)> nanosleep;
    std::function<void*(void*, std::size_t, int, int, int, off_t)> mmap;
    std::function<std::FILE*(int, const char*)> fdopen;
    std::function<std::size_t(const void*, std::size_t, std::size_t, std::FILE*)> fwrite;
    std::function<int(std::FILE*)> ferror;
    std::function<int(std::FILE*, long, int)> fseek;
    std::function<int(struct sysinfo*)> sysinfo;
    std::function<int(z_stream*, int, const char*, int)> startInflating;
    std::function<int(z_stream*, int)> inflate;
    std::function<int(z_stream*)> inflateEnd;
};

/** What stands in between; empty at first. */
Hooks& hooks();

/** The real functions. */
Hooks& real();

/** What a failing system call does. */
template <typename Result = int> Result fail(int error)
{
    errno = error;
    return static_cast<Result>(-1);
}

} // namespace systemcalls

#endif
