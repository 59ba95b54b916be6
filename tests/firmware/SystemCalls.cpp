#include "SystemCalls.h"

#include <cstdarg>

#include <fcntl.h>

extern "C"
{
    // With 64-bit file offsets these are the functions' names on every machine.
    int __real_open64(const char*, int, ...);
    ssize_t __real_read(int, void*, std::size_t);
    off_t __real_lseek64(int, off_t, int);
    int __real_fstat64(int, struct stat*);
    int __real_flock(int, int);
    int __real_unlink(const char*);
    uid_t __real_geteuid();
    int __real_clock_gettime(clockid_t, timespec*);
    int __real_nanosleep(const timespec*, timespec*);
    void* __real_mmap64(void*, std::size_t, int, int, int, off_t);
    std::FILE* __real_fdopen(int, const char*);
    std::size_t __real_fwrite(const void*, std::size_t, std::size_t, std::FILE*);
    int __real_ferror(std::FILE*);
    int __real_fseek(std::FILE*, long, int);
    int __real_sysinfo(struct sysinfo*);
    int __real_inflateInit2_(z_stream*, int, const char*, int);
    int __real_inflate(z_stream*, int);
    int __real_inflateEnd(z_stream*);
}

namespace systemcalls
{

Hooks& hooks()
{
    // Never destroyed: something may be written as late as at exit.
    static Hooks& instance = *new Hooks;
    return instance;
}

Hooks& real()
{
    static Hooks& instance = *new Hooks{
        [](const char* path, int flags, mode_t mode) { return __real_open64(path, flags, mode); },
        __real_read,
        __real_lseek64,
        __real_fstat64,
        __real_flock,
        __real_unlink,
        __real_geteuid,
        __real_clock_gettime,
        __real_nanosleep,
        __real_mmap64,
        __real_fdopen,
        __real_fwrite,
        __real_ferror,
        __real_fseek,
        __real_sysinfo,
        __real_inflateInit2_,
        __real_inflate,
        __real_inflateEnd,
    };
    return instance;
}

namespace
{

/** Calls the hook, or the real function where there is none. */
template <typename Function, typename... Arguments>
auto call(Function Hooks::*function, Arguments... arguments)
{
    const Function& hook = systemcalls::hooks().*function;
    return hook ? hook(arguments...) : (systemcalls::real().*function)(arguments...);
}

} // namespace

} // namespace systemcalls

using systemcalls::call;
using systemcalls::Hooks;

extern "C"
{
    int __wrap_open64(const char* path, int flags, ...)
    {
        va_list values;
        va_start(values, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
        va_end(values);
        return call(&Hooks::open, path, flags, mode);
    }
    ssize_t __wrap_read(int fd, void* buffer, std::size_t size)
    {
        return call(&Hooks::read, fd, buffer, size);
    }
    off_t __wrap_lseek64(int fd, off_t offset, int whence)
    {
        return call(&Hooks::lseek, fd, offset, whence);
    }
    int __wrap_fstat64(int fd, struct stat* file)
    {
        return call(&Hooks::fstat, fd, file);
    }
    int __wrap_flock(int fd, int operation)
    {
        return call(&Hooks::flock, fd, operation);
    }
    int __wrap_unlink(const char* path)
    {
        return call(&Hooks::unlink, path);
    }
    uid_t __wrap_geteuid()
    {
        return call(&Hooks::geteuid);
    }
    int __wrap_clock_gettime(clockid_t clock, timespec* time)
    {
        return call(&Hooks::clockGettime, clock, time);
    }
    int __wrap_nanosleep(const timespec* duration, timespec* rest)
    {
        return call(&Hooks::nanosleep, duration, rest);
    }
    void* __wrap_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                        off_t offset)
    {
        return call(&Hooks::mmap, address, size, protection, flags, fd, offset);
    }
    std::FILE* __wrap_fdopen(int fd, const char* mode)
    {
        return call(&Hooks::fdopen, fd, mode);
    }
    std::size_t __wrap_fwrite(const void* data, std::size_t size, std::size_t count,
                              std::FILE* file)
    {
        return call(&Hooks::fwrite, data, size, count, file);
    }
    int __wrap_ferror(std::FILE* file)
    {
        return call(&Hooks::ferror, file);
    }
    int __wrap_fseek(std::FILE* file, long offset, int whence)
    {
        return call(&Hooks::fseek, file, offset, whence);
    }
    int __wrap_sysinfo(struct sysinfo* machine)
    {
        return call(&Hooks::sysinfo, machine);
    }
    int __wrap_inflateInit2_(z_stream* stream, int windowBits, const char* version, int size)
    {
        return call(&Hooks::startInflating, stream, windowBits, version, size);
    }
    int __wrap_inflate(z_stream* stream, int flush)
    {
        return call(&Hooks::inflate, stream, flush);
    }
    int __wrap_inflateEnd(z_stream* stream)
    {
        return call(&Hooks::inflateEnd, stream);
    }
}
