#include "WarmCalls.h"

#include <utility>

#include <fcntl.h>
#include <sys/mman.h>

namespace warmcalls
{

namespace
{

using std::to_string;
using systemcalls::real;

std::function<void(int error)> failureObserver;
sem_t* lastSemaphore = nullptr;
char* lastMapping = nullptr;

/** Records a call. Returns whether it is to fail, with errno set. */
bool fails(const std::string& function, const std::string& arguments = "")
{
    const bool isFailure = systemcalls::next(function, arguments).has_value();
    if (isFailure && failureObserver) {
        const int error = errno;
        failureObserver(error);
        errno = error;
    }
    return isFailure;
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

sem_t* openSemaphore(const char* name, int flags, mode_t mode, unsigned int value)
{
    const std::string creation =
        (flags & O_CREAT) != 0 ? octal(mode) + ' ' + to_string(value) : std::string();
    if (fails("sem_open", name + openFlags(flags) + creation)) {
        return SEM_FAILED;
    }
    sem_t* const semaphore = real().sem_open(name, flags, mode, value);
    lastSemaphore = semaphore == SEM_FAILED ? lastSemaphore : semaphore;
    return semaphore;
}

void* map(void* address, std::size_t size, int protection, int flags, int fd, off_t offset)
{
    if (fails("mmap", to_string(size) + mapFlags(protection, flags) + " at " + to_string(offset))) {
        return MAP_FAILED;
    }
    void* const mapping = real().mmap(address, size, protection, flags, fd, offset);
    lastMapping = static_cast<char*>(mapping);
    return mapping;
}

int initMutex(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes)
{
    if (attributes != nullptr) {
        int shared = PTHREAD_PROCESS_PRIVATE;
        ::pthread_mutexattr_getpshared(attributes, &shared);
        systemcalls::note("pthread_mutex_init at " +
                          to_string(reinterpret_cast<char*>(mutex) - lastMapping) +
                          (shared == PTHREAD_PROCESS_SHARED ? " shared" : " private"));
    }
    return real().pthread_mutex_init(mutex, attributes);
}

/** Records the calls of a function, with what describes their arguments. */
template <typename... Arguments, typename Describe>
void record(std::function<int(Arguments...)> systemcalls::Hooks::*function, const char* name,
            const Describe& describe)
{
    systemcalls::hooks().*function = [=](Arguments... arguments) {
        return fails(name, describe(arguments...)) ? -1 : (real().*function)(arguments...);
    };
}

const bool areRecorded = [] {
    using systemcalls::Hooks;
    const auto nothing = [](sem_t* /*semaphore*/) { return std::string(); };
    const auto theName = [](const char* name) { return std::string(name); };
    record(&Hooks::sem_wait, "sem_wait", nothing);
    record(&Hooks::sem_post, "sem_post", nothing);
    record(&Hooks::sem_close, "sem_close", nothing);
    record(&Hooks::sem_unlink, "sem_unlink", theName);
    record(&Hooks::shm_open, "shm_open", [](const char* name, int flags, mode_t mode) {
        return name + openFlags(flags) + octal(mode);
    });
    record(&Hooks::shm_unlink, "shm_unlink", theName);
    record(&Hooks::ftruncate, "ftruncate", [](int, off_t size) { return to_string(size); });
    record(&Hooks::access, "access",
           [](const char* path, int mode) { return std::string(path) + ' ' + to_string(mode); });
    Hooks& hooks = systemcalls::hooks();
    hooks.sem_open = openSemaphore;
    hooks.mmap = map;
    hooks.munmap = [](void* address, std::size_t size) {
        // What counts coverage unmaps something before the layer maps anything.
        const bool isOfTheLayer = lastMapping != nullptr;
        return isOfTheLayer && fails("munmap", to_string(size)) ? -1 : real().munmap(address, size);
    };
    hooks.calloc = [](std::size_t count, std::size_t size) {
        return fails("calloc", to_string(count * size)) ? nullptr : real().calloc(count, size);
    };
    hooks.pthread_mutex_init = initMutex;
    return true;
}();

} // namespace

void setFailureObserver(std::function<void(int error)> observer)
{
    failureObserver = std::move(observer);
}

sem_t* semaphore()
{
    return lastSemaphore;
}

int semaphoreValue()
{
    int value = -1;
    ::sem_getvalue(semaphore(), &value);
    return value;
}

} // namespace warmcalls
