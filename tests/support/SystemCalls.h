/**
 * @file
 * @brief Lets a test stand between a program and the functions of the system that it calls.
 *
 * A function that the test's WRAP names goes to its hook, and where there is none on to the system.
 * A hook may call the real function itself; next() tells it what the test has queued.
 */
#ifndef TESTS_SUPPORT_SYSTEMCALLS_H
#define TESTS_SUPPORT_SYSTEMCALLS_H

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <pthread.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/types.h>

struct z_stream_s;

/**
 * All functions that there can be hooks for: CALL(name, the linker's name, result, parameters,
 * arguments). With 64-bit file offsets some have that other name on every machine.
 */
// clang-format off
#define TESTS_SYSTEM_CALLS(CALL) \
    CALL(access, access, int, (const char* path, int mode), (path, mode)) \
    CALL(calloc, calloc, void*, (std::size_t count, std::size_t size), (count, size)) \
    CALL(clock_gettime, clock_gettime, int, (clockid_t clock, timespec* time), (clock, time)) \
    CALL(close, close, int, (int fd), (fd)) \
    CALL(connect, connect, int, (int fd, const sockaddr* address, socklen_t size), (fd, address, size)) \
    CALL(fchmod, fchmod, int, (int fd, mode_t mode), (fd, mode)) \
    CALL(fchown, fchown, int, (int fd, uid_t owner, gid_t group), (fd, owner, group)) \
    CALL(fclose, fclose, int, (std::FILE* file), (file)) \
    CALL(fcntl, fcntl64, int, (int fd, int command, void* argument), (fd, command, argument)) \
    CALL(fdopen, fdopen, std::FILE*, (int fd, const char* mode), (fd, mode)) \
    CALL(ferror, ferror, int, (std::FILE* file), (file)) \
    CALL(flock, flock, int, (int fd, int operation), (fd, operation)) \
    CALL(fseek, fseek, int, (std::FILE* file, long offset, int whence), (file, offset, whence)) \
    CALL(fstat, fstat64, int, (int fd, struct stat* status), (fd, status)) \
    CALL(fsync, fsync, int, (int fd), (fd)) \
    CALL(ftruncate, ftruncate64, int, (int fd, off_t size), (fd, size)) \
    CALL(fwrite, fwrite, std::size_t, \
         (const void* data, std::size_t size, std::size_t count, std::FILE* file), (data, size, count, file)) \
    CALL(geteuid, geteuid, uid_t, (), ()) \
    CALL(inflate, inflate, int, (z_stream_s* stream, int flush), (stream, flush)) \
    CALL(inflateEnd, inflateEnd, int, (z_stream_s* stream), (stream)) \
    CALL(startInflating, inflateInit2_, int, (z_stream_s* stream, int bits, const char* version, int size), \
         (stream, bits, version, size)) \
    CALL(linkat, linkat, int, (int fromDirectory, const char* from, int toDirectory, const char* to, int flags), \
         (fromDirectory, from, toDirectory, to, flags)) \
    CALL(lseek, lseek64, off_t, (int fd, off_t offset, int whence), (fd, offset, whence)) \
    CALL(lstat, lstat64, int, (const char* path, struct stat* status), (path, status)) \
    CALL(mmap, mmap64, void*, (void* address, std::size_t size, int protection, int flags, int fd, off_t offset), \
         (address, size, protection, flags, fd, offset)) \
    CALL(munmap, munmap, int, (void* address, std::size_t size), (address, size)) \
    CALL(nanosleep, nanosleep, int, (const timespec* duration, timespec* rest), (duration, rest)) \
    CALL(open, open64, int, (const char* path, int flags, mode_t mode), (path, flags, mode)) \
    CALL(openat, openat64, int, (int directory, const char* path, int flags, mode_t mode), \
         (directory, path, flags, mode)) \
    CALL(pread, pread64, ssize_t, (int fd, void* buffer, std::size_t size, off_t offset), \
         (fd, buffer, size, offset)) \
    CALL(pthread_mutex_init, pthread_mutex_init, int, \
         (pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes), (mutex, attributes)) \
    CALL(pthread_mutex_lock, pthread_mutex_lock, int, (pthread_mutex_t* mutex), (mutex)) \
    CALL(pthread_once, pthread_once, int, (pthread_once_t* once, void (*function)()), (once, function)) \
    CALL(read, read, ssize_t, (int fd, void* buffer, std::size_t size), (fd, buffer, size)) \
    CALL(realpath, realpath, char*, (const char* path, char* resolved), (path, resolved)) \
    CALL(renameat, renameat, int, (int fromDirectory, const char* from, int toDirectory, const char* to), \
         (fromDirectory, from, toDirectory, to)) \
    CALL(secure_getenv, secure_getenv, char*, (const char* name), (name)) \
    CALL(sem_close, sem_close, int, (sem_t* semaphore), (semaphore)) \
    CALL(sem_open, sem_open, sem_t*, (const char* name, int flags, mode_t mode, unsigned int value), \
         (name, flags, mode, value)) \
    CALL(sem_post, sem_post, int, (sem_t* semaphore), (semaphore)) \
    CALL(sem_unlink, sem_unlink, int, (const char* name), (name)) \
    CALL(sem_wait, sem_wait, int, (sem_t* semaphore), (semaphore)) \
    CALL(shm_open, shm_open, int, (const char* name, int flags, mode_t mode), (name, flags, mode)) \
    CALL(shm_unlink, shm_unlink, int, (const char* name), (name)) \
    CALL(stat, stat64, int, (const char* path, struct stat* status), (path, status)) \
    CALL(statvfs, statvfs64, int, (const char* path, struct statvfs* status), (path, status)) \
    CALL(steadyNow, _ZNSt6chrono3_V212steady_clock3nowEv, std::chrono::steady_clock::time_point, (), ()) \
    CALL(sysinfo, sysinfo, int, (struct sysinfo* machine), (machine)) \
    CALL(unlink, unlink, int, (const char* path), (path)) \
    CALL(unlinkat, unlinkat, int, (int directory, const char* path, int flags), (directory, path, flags)) \
    CALL(write, write, ssize_t, (int fd, const void* data, std::size_t size), (fd, data, size))
// clang-format on

namespace systemcalls
{

#define TESTS_HOOK(name, symbol, Result, parameters, arguments)                                    \
    std::function<Result parameters> name;

/** The optional third and fourth arguments of open and its like are there, whatever they hold. */
struct Hooks
{
    TESTS_SYSTEM_CALLS(TESTS_HOOK)
};

#undef TESTS_HOOK

/** What stands in between; empty at first. */
Hooks& hooks();

/** The real functions; only those that WRAP names can be called. */
const Hooks& real();

/** What a failing system call does. */
template <typename Result = int> Result fail(int error)
{
    errno = error;
    return static_cast<Result>(-1);
}

/** What a call is to do when its turn comes. */
struct Step
{
    int result; /**< -1 is a failure. */
    int error = 0;
};

/** The call is to be made. */
constexpr Step Done{0, -1};

/** What the next calls of that function are to do; each that is not told is made. */
void queue(const std::string& function, const std::vector<Step>& steps);

/** What has been queued for a function, which never came. */
std::vector<std::string> left();

/**
 * Records a call, as the function's name and what it is called with, and takes its step.
 *
 * @return the step, with errno set where it fails; nothing when the call is to be made
 */
std::optional<Step> next(const std::string& function, const std::string& arguments = "");

/** Writes a line among the calls. */
void note(const std::string& line);

/** All calls and notes since the last call of this, one line each. */
std::vector<std::string> take();

/** From now on each line is also written to standard error. */
void echo();

} // namespace systemcalls

#endif
