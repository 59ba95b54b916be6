#include "SystemCalls.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/types.h>

namespace systemcalls
{

namespace
{

struct Recorder
{
    std::map<std::string, std::deque<int>> errors;
    std::recursive_mutex mutex; /**< Guards the calls and the errors to come. */
    std::vector<std::string> lines;
    bool echoes = false;
    std::function<void(int error)> failureObserver;
    sem_t* semaphore = nullptr;
    char* mapping = nullptr;
};

/** Never destroyed: the last calls are made at exit. */
Recorder& recorder()
{
    static Recorder& instance = *new Recorder;
    return instance;
}

/** Records a call. Returns whether it is to fail, with errno set. */
bool fails(const std::string& function, const std::string& arguments)
{
    const int before = errno;
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    note(function + arguments);
    errno = before;
    std::deque<int>& errors = recorder().errors[function];
    if (errors.empty()) {
        return false;
    }
    const int error = std::exchange(errors.front(), 0);
    errors.pop_front();
    if (error != 0 && recorder().failureObserver) {
        recorder().failureObserver(error);
    }
    if (error != 0) {
        errno = error;
    }
    return error != 0;
}

std::string octal(unsigned int mode)
{
    char text[16];
    std::snprintf(text, sizeof(text), " %04o", mode);
    return text;
}

std::string openFlags(int flags)
{
    std::string text = (flags & O_ACCMODE) == O_RDWR ? " O_RDWR" : "";
    text += (flags & O_CREAT) != 0 ? " O_CREAT" : "";
    text += (flags & O_EXCL) != 0 ? " O_EXCL" : "";
    const int others = flags & ~(O_ACCMODE | O_CREAT | O_EXCL);
    return others == 0 ? text : text + " and others";
}

std::string mapFlags(int protection, int flags)
{
    std::string text = protection == (PROT_READ | PROT_WRITE) ? " read-write" : " other protection";
    text += (flags & MAP_SHARED) != 0 ? " shared" : "";
    text += (flags & MAP_LOCKED) != 0 ? " locked" : "";
    return (flags & ~(MAP_SHARED | MAP_LOCKED)) == 0 ? text : text + " and others";
}

} // namespace

void queue(const std::string& function, int error)
{
    recorder().errors[function].push_back(error);
}

void setFailureObserver(std::function<void(int error)> observer)
{
    recorder().failureObserver = std::move(observer);
}

void note(const std::string& line)
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    recorder().lines.push_back(line);
    if (recorder().echoes) {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
}

std::vector<std::string> take()
{
    const std::lock_guard<std::recursive_mutex> guard(recorder().mutex);
    return std::exchange(recorder().lines, {});
}

void echo()
{
    recorder().echoes = true;
}

sem_t* semaphore()
{
    return recorder().semaphore;
}

int semaphoreValue()
{
    int value = -1;
    ::sem_getvalue(semaphore(), &value);
    return value;
}

} // namespace systemcalls

using systemcalls::fails;
using systemcalls::recorder;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp): the
// linker's names and the functions' own forms
extern "C"
{
    sem_t* __real_sem_open(const char* name, int flags, ...);
    int __real_sem_wait(sem_t* semaphore);
    int __real_sem_post(sem_t* semaphore);
    int __real_sem_close(sem_t* semaphore);
    int __real_sem_unlink(const char* name);
    int __real_shm_open(const char* name, int flags, mode_t mode);
    int __real_shm_unlink(const char* name);
    int __real_ftruncate64(int fd, off_t size);
    void* __real_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                        off_t offset);
    int __real_munmap(void* address, std::size_t size);
    void* __real_calloc(std::size_t count, std::size_t size);
    int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
    int __real_access(const char* path, int mode);

    sem_t* __wrap_sem_open(const char* name, int flags, ...)
    {
        unsigned int mode = 0;
        unsigned int value = 0;
        std::string creation;
        if ((flags & O_CREAT) != 0) {
            va_list arguments;
            va_start(arguments, flags);
            mode = va_arg(arguments, unsigned int);
            value = va_arg(arguments, unsigned int);
            va_end(arguments);
            creation = systemcalls::octal(mode) + ' ' + std::to_string(value);
        }
        if (fails("sem_open", ' ' + std::string(name) + systemcalls::openFlags(flags) + creation)) {
            return SEM_FAILED;
        }
        sem_t* semaphore = __real_sem_open(name, flags, mode, value);
        if (semaphore != SEM_FAILED) {
            recorder().semaphore = semaphore;
        }
        return semaphore;
    }

    int __wrap_sem_wait(sem_t* semaphore)
    {
        return fails("sem_wait", "") ? -1 : __real_sem_wait(semaphore);
    }

    int __wrap_sem_post(sem_t* semaphore)
    {
        return fails("sem_post", "") ? -1 : __real_sem_post(semaphore);
    }

    int __wrap_sem_close(sem_t* semaphore)
    {
        return fails("sem_close", "") ? -1 : __real_sem_close(semaphore);
    }

    int __wrap_sem_unlink(const char* name)
    {
        return fails("sem_unlink", ' ' + std::string(name)) ? -1 : __real_sem_unlink(name);
    }

    int __wrap_shm_open(const char* name, int flags, mode_t mode)
    {
        const std::string arguments =
            ' ' + std::string(name) + systemcalls::openFlags(flags) + systemcalls::octal(mode);
        return fails("shm_open", arguments) ? -1 : __real_shm_open(name, flags, mode);
    }

    int __wrap_shm_unlink(const char* name)
    {
        return fails("shm_unlink", ' ' + std::string(name)) ? -1 : __real_shm_unlink(name);
    }

    int __wrap_ftruncate64(int fd, off_t size)
    {
        return fails("ftruncate", ' ' + std::to_string(size)) ? -1 : __real_ftruncate64(fd, size);
    }

    void* __wrap_mmap64(void* address, std::size_t size, int protection, int flags, int fd,
                        off_t offset)
    {
        if (fails("mmap", ' ' + std::to_string(size) + systemcalls::mapFlags(protection, flags) +
                              " at " + std::to_string(offset)))
        {
            return MAP_FAILED;
        }
        void* mapping = __real_mmap64(address, size, protection, flags, fd, offset);
        recorder().mapping = static_cast<char*>(mapping);
        return mapping;
    }

    int __wrap_munmap(void* address, std::size_t size)
    {
        return fails("munmap", ' ' + std::to_string(size)) ? -1 : __real_munmap(address, size);
    }

    void* __wrap_calloc(std::size_t count, std::size_t size)
    {
        return fails("calloc", ' ' + std::to_string(count * size)) ? nullptr
                                                                   : __real_calloc(count, size);
    }

    int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes)
    {
        if (attributes != nullptr) {
            int shared = PTHREAD_PROCESS_PRIVATE;
            ::pthread_mutexattr_getpshared(attributes, &shared);
            const auto offset = reinterpret_cast<char*>(mutex) - recorder().mapping;
            systemcalls::note("pthread_mutex_init at " + std::to_string(offset) +
                              (shared == PTHREAD_PROCESS_SHARED ? " shared" : " private"));
        }
        return __real_pthread_mutex_init(mutex, attributes);
    }

    int __wrap_access(const char* path, int mode)
    {
        return fails("access", ' ' + std::string(path) + ' ' + std::to_string(mode))
                   ? -1
                   : __real_access(path, mode);
    }
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp)
