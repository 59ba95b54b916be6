#include "Passing.h"
#include "SystemCalls.h"

#include <cstdarg>
#include <cstdio>

#include <sys/mman.h>
#include <zlib.h>

namespace interposed
{

namespace
{

using systemcalls::Hooks;
using systemcalls::hooks;
using systemcalls::real;

template <typename Result, typename... Parameters>
using Hook = std::function<Result(Parameters...)> Hooks::*;

template <typename Result> using NotDeduced = std::common_type_t<Result>;

template <typename Result, typename... Parameters>
void hook(const char* name, NotDeduced<Result> failed, Hook<Result, Parameters...> which)
{
    hooks().*which = [name, failed, &made = real().*which](Parameters... arguments) {
        return pass(name, failed, [&] { return made(arguments...); });
    };
}

} // namespace

void standBetween()
{
    hook("access", -1, &Hooks::access);
    hook("clock_gettime", -1, &Hooks::clock_gettime);
    hook("close", -1, &Hooks::close);
    hook("fclose", EOF, &Hooks::fclose);
    hook("fcntl", -1, &Hooks::fcntl);
    hook("fdopen", nullptr, &Hooks::fdopen);
    hook("ferror", 1, &Hooks::ferror);
    hook("flock", -1, &Hooks::flock);
    hook("fseek", -1, &Hooks::fseek);
    hook("fstat", -1, &Hooks::fstat);
    hook("ftruncate", -1, &Hooks::ftruncate);
    hook("inflate", Z_DATA_ERROR, &Hooks::inflate);
    hook("inflateEnd", Z_STREAM_ERROR, &Hooks::inflateEnd);
    hook("inflateInit2_", Z_MEM_ERROR, &Hooks::startInflating);
    hook("lseek", -1, &Hooks::lseek);
    hook("lstat", -1, &Hooks::lstat);
    hook("nanosleep", -1, &Hooks::nanosleep);
    hook("open", -1, &Hooks::open);
    hook("pthread_mutex_init", -1, &Hooks::pthread_mutex_init);
    hook("pthread_mutex_lock", -1, &Hooks::pthread_mutex_lock);
    hook("pthread_once", -1, &Hooks::pthread_once);
    hook("sem_close", -1, &Hooks::sem_close);
    hook("sem_open", SEM_FAILED, &Hooks::sem_open);
    hook("sem_post", -1, &Hooks::sem_post);
    hook("sem_unlink", -1, &Hooks::sem_unlink);
    hook("sem_wait", -1, &Hooks::sem_wait);
    hook("shm_open", -1, &Hooks::shm_open);
    hook("shm_unlink", -1, &Hooks::shm_unlink);
    hook("sysinfo", -1, &Hooks::sysinfo);
    hook("unlink", -1, &Hooks::unlink);

    hooks().mmap = [](auto... arguments) {
        void* mapping = pass("mmap", MAP_FAILED, [=] { return real().mmap(arguments...); });
        addMappings(mapping == MAP_FAILED ? 0 : 1);
        return mapping;
    };
    hooks().munmap = [](auto... arguments) {
        addMappings(-1);
        return pass("munmap", -1, [=] { return real().munmap(arguments...); });
    };
    hooks().fwrite = [](const void* data, std::size_t size, std::size_t count, std::FILE* file) {
        return passCounted("fwrite", std::size_t{0}, count,
                           [=](std::size_t some) { return real().fwrite(data, size, some, file); });
    };
    hooks().read = [](int fd, void* buffer, std::size_t size) {
        return passCounted("read", ssize_t{-1}, size,
                           [=](std::size_t some) { return real().read(fd, buffer, some); });
    };
    hooks().write = [](int fd, const void* data, std::size_t size) {
        return passCounted("write", ssize_t{-1}, size,
                           [=](std::size_t some) { return real().write(fd, data, some); });
    };
}

} // namespace interposed

using interposed::pass;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl50-cpp): the
// linker's names and the functions' own forms
extern "C"
{
    int __real_DDevIo_close(int);

    int __wrap_snprintf(char* text, std::size_t size, const char* format, ...)
    {
        const std::optional<interposed::Fault> fault = interposed::enter("snprintf");
        va_list values;
        va_start(values, format);
        const int length = std::vsnprintf(text, size, format, values);
        va_end(values);
        return fault ? fault->value : length;
    }
    int __wrap_DDevIo_close(int handle)
    {
        return pass("DDevIo_close", -1, [=] { return __real_DDevIo_close(handle); });
    }

    // All that takes memory comes here: operator new, the C library, zlib.

    void* __libc_malloc(std::size_t size);
    void* __libc_calloc(std::size_t count, std::size_t size);
    void* __libc_realloc(void* memory, std::size_t size);

    void __libc_free(void* memory);

    void* malloc(std::size_t size)
    {
        return interposed::allocate([=] { return __libc_malloc(size); });
    }
    void* calloc(std::size_t count, std::size_t size)
    {
        return interposed::allocate([=] { return __libc_calloc(count, size); });
    }
    void* realloc(void* memory, std::size_t size)
    {
        return interposed::allocate([=] {
            void* other = __libc_realloc(memory, size);
            if (other != nullptr) {
                interposed::freed(memory);
            }
            return other;
        });
    }
    void free(void* memory)
    {
        interposed::freed(memory);
        __libc_free(memory);
    }
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl50-cpp)
