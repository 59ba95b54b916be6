#include "Passing.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <sys/types.h>
#include <zlib.h>

using interposed::Fault;
using interposed::pass;
using interposed::passCounted;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp): the
// linker's names and the functions' own forms
extern "C"
{
    int __real_access(const char*, int);
    int __real_clock_gettime(clockid_t, struct timespec*);
    int __real_close(int);
    int __real_fclose(std::FILE*);
    int __real_fcntl64(int, int, ...);
    std::FILE* __real_fdopen(int, const char*);
    int __real_ferror(std::FILE*);
    int __real_flock(int, int);
    int __real_fseek(std::FILE*, long, int);
    int __real_fstat64(int, struct stat*);
    int __real_ftruncate64(int, off_t);
    std::size_t __real_fwrite(const void*, std::size_t, std::size_t, std::FILE*);
    int __real_inflate(z_stream*, int);
    int __real_inflateEnd(z_stream*);
    int __real_inflateInit2_(z_stream*, int, const char*, int);
    off_t __real_lseek64(int, off_t, int);
    int __real_lstat64(const char*, struct stat*);
    void* __real_mmap64(void*, std::size_t, int, int, int, off_t);
    int __real_munmap(void*, std::size_t);
    int __real_nanosleep(const struct timespec*, struct timespec*);
    int __real_open64(const char*, int, ...);
    int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
    int __real_pthread_mutex_lock(pthread_mutex_t*);
    int __real_pthread_once(pthread_once_t*, void (*)());
    ssize_t __real_read(int, void*, std::size_t);
    int __real_sem_close(sem_t*);
    sem_t* __real_sem_open(const char*, int, ...);
    int __real_sem_post(sem_t*);
    int __real_sem_unlink(const char*);
    int __real_sem_wait(sem_t*);
    int __real_shm_open(const char*, int, mode_t);
    int __real_shm_unlink(const char*);
    int __real_sysinfo(struct sysinfo*);
    int __real_unlink(const char*);
    ssize_t __real_write(int, const void*, std::size_t);
    int __real_DDevIo_close(int);

    int __wrap_access(const char* path, int mode)
    {
        return pass("access", -1, __real_access, path, mode);
    }
    int __wrap_clock_gettime(clockid_t clock, struct timespec* time)
    {
        return pass("clock_gettime", -1, __real_clock_gettime, clock, time);
    }
    int __wrap_close(int fd)
    {
        return pass("close", -1, __real_close, fd);
    }
    int __wrap_fclose(std::FILE* file)
    {
        return pass("fclose", EOF, __real_fclose, file);
    }
    int __wrap_fcntl64(int fd, int command, long argument)
    {
        return pass(
            "fcntl", -1, +[](int f, int c, long a) { return __real_fcntl64(f, c, a); }, fd, command,
            argument);
    }
    std::FILE* __wrap_fdopen(int fd, const char* mode)
    {
        return pass("fdopen", static_cast<std::FILE*>(nullptr), __real_fdopen, fd, mode);
    }
    int __wrap_ferror(std::FILE* file)
    {
        return pass("ferror", 1, __real_ferror, file);
    }
    int __wrap_flock(int fd, int operation)
    {
        return pass("flock", -1, __real_flock, fd, operation);
    }
    int __wrap_fseek(std::FILE* file, long offset, int whence)
    {
        return pass("fseek", -1, __real_fseek, file, offset, whence);
    }
    int __wrap_fstat64(int fd, struct stat* status)
    {
        return pass("fstat", -1, __real_fstat64, fd, status);
    }
    int __wrap_ftruncate64(int fd, off_t size)
    {
        return pass("ftruncate", -1, __real_ftruncate64, fd, size);
    }
    std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count,
                              std::FILE* file)
    {
        return passCounted("fwrite", std::size_t{0}, count,
                           [=](std::size_t some) { return __real_fwrite(data, size, some, file); });
    }
    int __wrap_inflate(z_stream* stream, int flush)
    {
        return pass("inflate", Z_DATA_ERROR, __real_inflate, stream, flush);
    }
    int __wrap_inflateEnd(z_stream* stream)
    {
        return pass("inflateEnd", Z_STREAM_ERROR, __real_inflateEnd, stream);
    }
    int __wrap_inflateInit2_(z_stream* stream, int bits, const char* version, int size)
    {
        return pass("inflateInit2_", Z_MEM_ERROR, __real_inflateInit2_, stream, bits, version,
                    size);
    }
    off_t __wrap_lseek64(int fd, off_t offset, int whence)
    {
        return pass("lseek", off_t{-1}, __real_lseek64, fd, offset, whence);
    }
    int __wrap_lstat64(const char* path, struct stat* status)
    {
        return pass("lstat", -1, __real_lstat64, path, status);
    }
    void* __wrap_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                        off_t offset)
    {
        void* mapping =
            pass("mmap", MAP_FAILED, __real_mmap64, address, size, protection, flags, fd, offset);
        interposed::addMappings(mapping == MAP_FAILED ? 0 : 1);
        return mapping;
    }
    int __wrap_munmap(void* address, std::size_t size)
    {
        interposed::addMappings(-1);
        return pass("munmap", -1, __real_munmap, address, size);
    }
    int __wrap_nanosleep(const struct timespec* time, struct timespec* rest)
    {
        return pass("nanosleep", -1, __real_nanosleep, time, rest);
    }
    int __wrap_open64(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return pass(
            "open", -1, +[](const char* p, int f, mode_t m) { return __real_open64(p, f, m); },
            path, flags, mode);
    }
    int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes)
    {
        return pass("pthread_mutex_init", -1, __real_pthread_mutex_init, mutex, attributes);
    }
    int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex)
    {
        return pass("pthread_mutex_lock", -1, __real_pthread_mutex_lock, mutex);
    }
    int __wrap_pthread_once(pthread_once_t* once, void (*function)())
    {
        return pass("pthread_once", -1, __real_pthread_once, once, function);
    }
    ssize_t __wrap_read(int fd, void* buffer, std::size_t size)
    {
        return passCounted("read", ssize_t{-1}, size,
                           [=](std::size_t some) { return __real_read(fd, buffer, some); });
    }
    int __wrap_sem_close(sem_t* semaphore)
    {
        return pass("sem_close", -1, __real_sem_close, semaphore);
    }
    sem_t* __wrap_sem_open(const char* name, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const bool creates = (flags & O_CREAT) != 0;
        const mode_t mode = creates ? va_arg(arguments, mode_t) : 0;
        const unsigned int value = creates ? va_arg(arguments, unsigned int) : 0;
        va_end(arguments);
        return pass(
            "sem_open", SEM_FAILED,
            +[](const char* n, int f, mode_t m, unsigned int v) {
                return __real_sem_open(n, f, m, v);
            },
            name, flags, mode, value);
    }
    int __wrap_sem_post(sem_t* semaphore)
    {
        return pass("sem_post", -1, __real_sem_post, semaphore);
    }
    int __wrap_sem_unlink(const char* name)
    {
        return pass("sem_unlink", -1, __real_sem_unlink, name);
    }
    int __wrap_sem_wait(sem_t* semaphore)
    {
        return pass("sem_wait", -1, __real_sem_wait, semaphore);
    }
    int __wrap_shm_open(const char* name, int flags, mode_t mode)
    {
        return pass("shm_open", -1, __real_shm_open, name, flags, mode);
    }
    int __wrap_shm_unlink(const char* name)
    {
        return pass("shm_unlink", -1, __real_shm_unlink, name);
    }
    int __wrap_snprintf(char* text, std::size_t size, const char* format, ...)
    {
        const std::optional<Fault> fault = interposed::enter("snprintf");
        va_list values;
        va_start(values, format);
        const int length = std::vsnprintf(text, size, format, values);
        va_end(values);
        return fault ? fault->value : length;
    }
    int __wrap_sysinfo(struct sysinfo* machine)
    {
        return pass("sysinfo", -1, __real_sysinfo, machine);
    }
    int __wrap_unlink(const char* path)
    {
        return pass("unlink", -1, __real_unlink, path);
    }
    ssize_t __wrap_write(int fd, const void* data, std::size_t size)
    {
        return passCounted("write", ssize_t{-1}, size,
                           [=](std::size_t some) { return __real_write(fd, data, some); });
    }
    int __wrap_DDevIo_close(int handle)
    {
        return pass("DDevIo_close", -1, __real_DDevIo_close, handle);
    }

    // All that takes memory comes here: operator new, the C library, zlib.

    void* __libc_malloc(std::size_t size);
    void* __libc_calloc(std::size_t count, std::size_t size);
    void* __libc_realloc(void* memory, std::size_t size);

    void __libc_free(void* memory);

    void* malloc(std::size_t size)
    {
        return interposed::allocated(
            pass("allocation", static_cast<void*>(nullptr), __libc_malloc, size));
    }
    void* calloc(std::size_t count, std::size_t size)
    {
        return interposed::allocated(
            pass("allocation", static_cast<void*>(nullptr), __libc_calloc, count, size));
    }
    void* realloc(void* memory, std::size_t size)
    {
        void* other = pass("allocation", static_cast<void*>(nullptr), __libc_realloc, memory, size);
        if (other != nullptr) {
            interposed::freed(memory);
        }
        return interposed::allocated(other);
    }
    void free(void* memory)
    {
        interposed::freed(memory);
        __libc_free(memory);
    }
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp)
