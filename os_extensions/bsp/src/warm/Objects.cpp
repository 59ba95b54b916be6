#include "WarmDatabase.h"

#include "SharedMutex.h"
#include "warm/Table.h"

#include <cerrno>

namespace os::bsp::dtcm
{

namespace
{

void take(sem_t* semaphore)
{
    if (semaphore == nullptr) {
        return;
    }
    while (::sem_wait(semaphore) == -1 && errno == EINTR) {
        errno = 0;
    }
}

void give(sem_t* semaphore)
{
    if (semaphore != nullptr) {
        ::sem_post(semaphore);
    }
}

std::mutex* syncSlot(unsigned char* slots, unsigned int index)
{
    return slots == nullptr
               ? nullptr
               : lockable(reinterpret_cast<pthread_mutex_t*>(slots + index * SyncSlotSize));
}

/**
 * The trace names the function that a message is written in. getObjectData writes those of the
 * other two as well, so these bear their names. They are cold: kept out of the callers' code.
 */
class Report
{
public:
    static bool isWanted() { return trace::isActive(warmDatabaseTrace, trace::Information); }

    [[gnu::noinline, gnu::cold]] static void
    retrieveObject(const std::string& name, unsigned int index, unsigned int objectSize)
    {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                      "Retrieved object " << name << " from block " << index + 1
                                          << ". Size of object is " << objectSize);
    }

    [[gnu::noinline, gnu::cold]] static void getObjectSyncPointer(const std::string& name,
                                                                  unsigned int index)
    {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                      "Sync object for " << name << " found for block " << index + 1);
    }
};

} // namespace

WarmDatabase::SemLockGuard::SemLockGuard(sem_t* semaphore) : m_semaphore(semaphore)
{
    take(m_semaphore);
}

WarmDatabase::SemLockGuard::~SemLockGuard()
{
    give(m_semaphore);
}

void WarmDatabase::lock()
{
    take(m_dbSemaphore);
}

void WarmDatabase::unlock()
{
    give(m_dbSemaphore);
}

bool WarmDatabase::validateObject(const std::string& name, unsigned int objectSize)
{
    if (name.size() > MaxNameLength) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                      "Error: blockName " << name << " with length " << name.size()
                                          << " is larger than the allowed maximum of "
                                          << MaxNameLength);
        return false;
    }
    if (objectSize > MaxObjectSize) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                      "Error: objectSize: " << objectSize
                                            << " exceeds the maximum size: " << MaxObjectSize);
        return false;
    }
    return true;
}

bool WarmDatabase::createObject(const std::string& name, void** object, unsigned int objectSize,
                                bool lock)
{
    if (!validateObject(name, objectSize)) {
        *object = nullptr;
        return false;
    }
    const BlockTable table(m_mappedMemory);
    ScanResult scan{};
    {
        const SemLockGuard guard(lock ? m_dbSemaphore : nullptr);
        scan = table.scan(name);
        if (scan.kind == ScanResult::Found) {
            // There is no blank behind the name: programs look for the message as it is.
            TRACE_MESSAGE(warmDatabaseTrace, trace::Warning,
                          "Warning: object for block "
                              << name
                              << "has been requested to be created, but it "
                                 "was already present in warm area");
        }
        if (scan.kind != ScanResult::Full) {
            table.reset(scan.index, name);
        }
    }
    if (scan.kind == ScanResult::Full) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error, "Error: DTCM is out of space.");
        *object = nullptr;
        return false;
    }
    TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                  "Created object " << name << " in block " << scan.index + 1
                                    << ". Size of object is " << objectSize);
    *object = table[scan.index].data;
    return true;
}

bool WarmDatabase::retrieveObject(const std::string& name, void** object, unsigned int objectSize,
                                  bool lock)
{
    if (!validateObject(name, objectSize)) {
        *object = nullptr;
        return false;
    }
    const SemLockGuard guard(lock ? m_dbSemaphore : nullptr);
    const BlockTable table(m_mappedMemory);
    const ScanResult scan = table.scan(name);
    if (scan.kind != ScanResult::Found) {
        *object = nullptr;
        return false;
    }
    Report::retrieveObject(name, scan.index, objectSize);
    *object = table[scan.index].data;
    return true;
}

bool WarmDatabase::getObjectData(const std::string& name, void** object, unsigned int objectSize,
                                 std::mutex** sync, bool& created)
{
    const SemLockGuard guard(m_dbSemaphore);
    const BlockTable table(m_mappedMemory);
    const ScanResult scan = table.scan(name);
    if (scan.kind == ScanResult::Found && objectSize <= MaxObjectSize) {
        // Nobody changes the table meanwhile: one scan finds the block and its mutex.
        const bool isReported = Report::isWanted();
        if (isReported) {
            Report::retrieveObject(name, scan.index, objectSize);
        }
        *object = table[scan.index].data;
        created = false;
        if (isReported) {
            Report::getObjectSyncPointer(name, scan.index);
        }
        *sync = syncSlot(m_blockSync, scan.index);
        return true;
    }
    const bool found = retrieveObject(name, object, objectSize, false);
    created = !found && createObject(name, object, objectSize, false);
    *sync = found || created ? getObjectSyncPointer(name) : nullptr;
    return found || created;
}

std::mutex* WarmDatabase::getObjectSyncPointer(const std::string& name)
{
    const ScanResult scan = BlockTable(m_mappedMemory).scan(name);
    if (scan.kind != ScanResult::Found) {
        return nullptr;
    }
    Report::getObjectSyncPointer(name, scan.index);
    return syncSlot(m_blockSync, scan.index);
}

} // namespace os::bsp::dtcm
