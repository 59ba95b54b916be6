#include "InterposedCalls.h"

#include "Passing.h"
#include "PlatformScope.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <zlib.h>

namespace interposed
{

namespace
{

struct Watch
{
    Record* record = nullptr;
    std::vector<Broken> broken;
    std::optional<Fault> fault;
};

/** Never destroyed: the last calls are made at exit. */
Watch& theWatch()
{
    static Watch& instance = *new Watch;
    return instance;
}

bool isWatching = false;
const char* library = nullptr; /**< The function that is being performed. */

unsigned char indexOf(const char* name)
{
    const auto& all = functions();
    const auto found = std::find_if(all.begin(), all.end(), [name](const Function& function) {
        return std::strcmp(function.name, name) == 0;
    });
    if (found == all.end()) {
        throw std::logic_error(std::string("no row for ") + name);
    }
    return static_cast<unsigned char>(found - all.begin());
}

/** Puts one pointer in another's place among what was allocated. */
void replaceInHeap(const void* former, const void* pointer)
{
    auto& heap = theWatch().record->heap;
    const auto found = std::find(heap.begin(), heap.end(), former);
    if (found != heap.end()) {
        *found = pointer;
    } else if (former == nullptr) {
        throw std::logic_error("too many allocations");
    }
}

} // namespace

Performing::Performing(const char* name) : m_outer(library)
{
    library = std::strcmp(name, "pthread_once") == 0 ? nullptr : name;
}

Performing::~Performing()
{
    library = m_outer;
}

void* allocated(void* memory)
{
    if (isWatching && memory != nullptr && !testsupport::PlatformScope::isInside()) {
        replaceInHeap(nullptr, memory);
    }
    return memory;
}

void freed(const void* memory)
{
    if (isWatching && memory != nullptr) {
        replaceInHeap(memory, nullptr);
    }
}

void addMappings(int count)
{
    if (isWatching) {
        theWatch().record->mappings += count;
    }
}

const std::vector<Function>& functions()
{
    static const std::vector<Function>& table = *new std::vector<Function>{
        {"access", Fault::Fails, {EACCES, ELOOP, EIO, ENOMEM}, false},
        {"allocation", Fault::Fails, {ENOMEM}, false},
        {"clock_gettime", Fault::Gives, {}, false},
        {"close", Fault::FailsDone, {EINTR, EIO}, false},
        {"fclose", Fault::FailsDone, {EIO, ENOSPC, EINTR}, false},
        {"fcntl", Fault::Fails, {EMFILE, EINTR}, false},
        {"fdopen", Fault::Fails, {ENOMEM, EINVAL}, false},
        {"ferror", Fault::Gives, {1}, false},
        {"flock", Fault::Fails, {EINTR, ENOLCK, EWOULDBLOCK}, false},
        {"fseek", Fault::FailsDone, {EIO, ENOSPC, EINTR}, false},
        {"fstat", Fault::Fails, {EIO, ENOMEM, EOVERFLOW}, false},
        {"ftruncate", Fault::Fails, {EIO, EINTR, EPERM}, false},
        {"fwrite", Fault::Fails, {EIO, ENOSPC, EINTR}, true},
        {"inflate", Fault::Gives, {Z_NEED_DICT, Z_DATA_ERROR, Z_MEM_ERROR, Z_BUF_ERROR}, false},
        {"inflateEnd", Fault::FailsDone, {0}, false},
        {"inflateInit2_", Fault::Gives, {Z_MEM_ERROR, Z_VERSION_ERROR, Z_STREAM_ERROR}, false},
        {"lseek", Fault::Fails, {EINVAL, ESPIPE, EOVERFLOW, EIO}, false},
        {"lstat", Fault::Fails, {EACCES, ENOENT, EIO, ENOMEM}, false},
        {"mmap", Fault::Fails, {ENOMEM, EACCES, EAGAIN, ENODEV}, false},
        {"munmap", Fault::FailsDone, {EINVAL}, false},
        {"nanosleep", Fault::Fails, {EINTR}, false},
        {"open",
         Fault::Fails,
         {ENOENT, EACCES, EINTR, EMFILE, ENFILE, ENOMEM, EIO, ELOOP, EROFS},
         false},
        {"pthread_mutex_init", Fault::Gives, {ENOMEM, EAGAIN}, false},
        {"pthread_mutex_lock", Fault::Gives, {EINVAL, EDEADLK, EAGAIN}, false},
        {"pthread_once", Fault::Gives, {EINVAL, ENOMEM}, false},
        {"read", Fault::Fails, {EIO, EINTR, EAGAIN, EISDIR}, true},
        {"sem_close", Fault::FailsDone, {EINVAL}, false},
        {"sem_open", Fault::Fails, {EACCES, EINVAL, EMFILE, ENFILE, ENOMEM, ENOSPC}, false},
        {"sem_post", Fault::FailsDone, {EINVAL, EOVERFLOW}, false},
        {"sem_unlink", Fault::Fails, {ENOENT, EACCES}, false},
        {"sem_wait", Fault::Fails, {EINTR}, false},
        {"shm_open", Fault::Fails, {EACCES, EMFILE, ENFILE, ENOSPC, EINTR}, false},
        {"shm_unlink", Fault::Fails, {ENOENT, EACCES}, false},
        {"snprintf", Fault::Gives, {-1, 64}, false},
        {"sysinfo", Fault::Fails, {EFAULT}, false},
        {"unlink", Fault::Fails, {EACCES, EROFS, EIO, ENOENT}, false},
        {"write", Fault::Fails, {EIO, ENOSPC, EINTR, EAGAIN, ENODEV}, true},
        // The platform: the device library, the EEPROM, the key/value store, the trace library.
        {"DDevIo_close", Fault::FailsDone, {EIO}, false},
        {"DDevIo_open", Fault::Gives, {-ENOENT, -EACCES, -EINTR}, false},
        {"DDevIo_open throws", Fault::Throws, {0, 1}, false},
        {"createUnique", Fault::Gives, {0}, false},
        {"createUnique of another type", Fault::Gives, {0}, false},
        {"createUnique throws", Fault::Throws, {0, 1}, false},
        {"Device::read", Fault::Gives, {-1}, false},
        {"e2prom_data_read", Fault::Gives, {-1, 1, -EIO}, false},
        {"NxuConfig refuses", Fault::Gives, {0}, false},
        {"NxuConfig throws", Fault::Throws, {0}, false},
    };
    return table;
}

std::string nameOf(const Record& record, std::size_t call)
{
    const auto& all = functions();
    const std::string name = all[record.functions[call]].name;
    const unsigned int outer = record.outer[call];
    return outer == 0 ? name : name + " in " + all[outer - 1].name;
}

std::size_t heapLeft(const Record& record)
{
    return record.heap.size() -
           static_cast<std::size_t>(std::count(record.heap.begin(), record.heap.end(), nullptr));
}

std::vector<Fault> plausibleFaults(const Record& record)
{
    std::vector<Fault> faults;
    for (std::size_t call = 0; call < record.size; ++call) {
        const Function& function = functions()[record.functions[call]];
        for (const int value : function.values) {
            faults.push_back({call, function.kind, value});
        }
        if (function.countsBytes) {
            faults.push_back({call, Fault::IsShort, 0});
            faults.push_back({call, Fault::Gives, 0});
        }
    }
    return faults;
}

std::string describe(const Record& record, const Fault& fault)
{
    const std::string what =
        "call " + std::to_string(fault.call) + ", " + nameOf(record, fault.call);
    switch (fault.kind) {
    case Fault::Fails:
        return what + " fails: " + std::strerror(fault.value);
    case Fault::FailsDone:
        return what + " is done and fails: " + std::strerror(fault.value);
    case Fault::Gives:
        return what + " gives " + std::to_string(fault.value);
    case Fault::IsShort:
        return what + " is short";
    case Fault::Throws:
        return what;
    }
    return what;
}

void watch(Record& record, std::vector<Broken> broken, const std::optional<Fault>& fault)
{
    theWatch() = {&record, std::move(broken), fault};
    isWatching = true;
}

void unwatch()
{
    isWatching = false;
}

std::optional<Fault> enter(const char* function)
{
    if (!isWatching || testsupport::PlatformScope::isInside()) {
        return std::nullopt;
    }
    const testsupport::PlatformScope scope;
    Watch& watch = theWatch();
    for (Broken& broken : watch.broken) {
        if (broken.function == function && broken.times > 0) {
            --broken.times;
            return Fault{0, Fault::Fails, broken.error};
        }
    }
    Record& record = *watch.record;
    const std::size_t call = record.size;
    if (call == record.functions.size()) {
        throw std::logic_error("too many calls");
    }
    record.functions[call] = indexOf(function);
    record.outer[call] = library == nullptr ? 0 : static_cast<unsigned char>(indexOf(library) + 1);
    ++record.size;
    return watch.fault && watch.fault->call == call ? watch.fault : std::nullopt;
}

} // namespace interposed
