// The assertions below are part of the interface in every build type.
#undef NDEBUG

#include "WarmDatabase.h"

#include "Bsp.h"
#include "DDevIo.h"
#include "ErrnoText.h"
#include "SharedMutex.h"
#include "warm/Table.h"

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os::bsp::dtcm
{

HvxTrace warmDatabaseTrace("Bsp.WarmDatabase", trace::Notice);

namespace
{

constexpr mode_t SharedMode = 0666;

/** Memory of this process alone, all 0; null when there is none. */
unsigned char* allocatePrivate(std::size_t size)
{
    return static_cast<unsigned char*>(std::calloc(1, size));
}

void* mapShared(int fd, std::size_t size)
{
    return ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_LOCKED, fd, 0);
}

/**
 * Opens the block-synchronisation area. The descriptor stays open, so it is none of the standard
 * streams' numbers: what a program writes to a stream that it has closed must not go into mutexes.
 */
int openSyncArea(int flags, mode_t mode)
{
    constexpr int FirstOther = STDERR_FILENO + 1;
    const int fd = ::shm_open(SyncAreaName, flags, mode);
    if (fd == -1 || fd >= FirstOther) {
        return fd;
    }
    const int other = ::fcntl(fd, F_DUPFD_CLOEXEC, FirstOther);
    if (other == -1) {
        return fd;
    }
    ::close(fd);
    return other;
}

void initSyncSlots(unsigned char* slots)
{
    for (unsigned int i = 0; i < NumberOfBlocks; ++i) {
        initSharedMutex(reinterpret_cast<pthread_mutex_t*>(slots + i * SyncSlotSize));
    }
}

} // namespace

WarmDatabase& WarmDatabase::getInstance()
{
    static WarmDatabase instance;
    return instance;
}

WarmDatabase::WarmDatabase()
{
    try {
        memoryMapTheDatabase();
        if (initDatabaseSemaphore()) {
            // When this throws, the semaphore is meant to stay at 0: nobody may use an area of
            // which it is not known whether it should have been cleared.
            clearDatabaseIfColdRestart();
            unlock();
        }
        initBlockSynchronization();
    } catch (const std::exception& exception) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                      "Error during initialization of warm area: Caught exception ["
                          << exception.what() << "].");
    } catch (...) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                      "Error during initialization of warm area: Caught unknown exception");
    }
}

WarmDatabase::~WarmDatabase()
{
    // A private area is unmapped too, which the kernel refuses or which does no harm.
    ::munmap(m_mappedMemory, AreaSize);
    if (m_dbSemaphore != nullptr) {
        ::sem_close(m_dbSemaphore);
    }
    if (m_ownsDbSemaphore) {
        ::sem_unlink(SemaphoreName);
    }
    if (m_ownsBlockSync) {
        ::shm_unlink(SyncAreaName);
    }
}

void WarmDatabase::memoryMapTheDatabase()
{
    const int device = DDevIo_open(hardware::WarmAreaDevice);
    if (device < 0) {
        m_mappedMemory = allocatePrivate(AreaSize);
        TRACE_MESSAGE(warmDatabaseTrace, trace::Error, "Error during initialization of warm area");
        assert(m_mappedMemory != nullptr);
        return;
    }
    void* mapping = mapShared(DDevIo_getFileDescriptor(device), AreaSize);
    const int mappingError = errno;
    DDevIo_close(device);
    if (mapping != MAP_FAILED) {
        m_mappedMemory = static_cast<unsigned char*>(mapping);
        return;
    }
    m_mappedMemory = allocatePrivate(AreaSize);
    TRACE_MESSAGE(
        warmDatabaseTrace, trace::Error,
        "Error during initialization of warm area, error: " << syscalls::errnoText(mappingError));
    assert(m_mappedMemory != nullptr);
}

bool WarmDatabase::initDatabaseSemaphore()
{
    sem_t* semaphore = ::sem_open(SemaphoreName, O_CREAT | O_EXCL, SharedMode, 0U);
    if (semaphore != SEM_FAILED) {
        m_dbSemaphore = semaphore;
        m_ownsDbSemaphore = true;
        return true;
    }
    if (errno == EEXIST) {
        semaphore = ::sem_open(SemaphoreName, O_EXCL);
        if (semaphore != SEM_FAILED) {
            m_dbSemaphore = semaphore;
            return false;
        }
    }
    TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                  "error in sem_open error: " << syscalls::errnoText(errno));
    return false;
}

void WarmDatabase::clearDatabaseIfColdRestart()
{
    if (getResetType() == ResetType::Cold) {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Information, "COLD restart, clearing database.");
        std::memset(m_mappedMemory, 0, AreaSize);
    } else {
        TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                      "WARM restart, leaving database as is.");
    }
    logNamesOfUsedBlocks();
}

void WarmDatabase::initBlockSynchronization()
{
    // What mmap answers is not looked at, and the descriptors stay open.
    int fd = openSyncArea(O_RDWR, 0);
    if (fd != -1) {
        m_blockSync = static_cast<unsigned char*>(mapShared(fd, SyncAreaSize));
        return;
    }
    fd = openSyncArea(O_RDWR | O_CREAT, SharedMode);
    if (fd != -1) {
        m_ownsBlockSync = true;
        [[maybe_unused]] const int result = ::ftruncate(fd, SyncAreaSize);
        m_blockSync = static_cast<unsigned char*>(mapShared(fd, SyncAreaSize));
        initSyncSlots(m_blockSync);
        return;
    }
    TRACE_MESSAGE(warmDatabaseTrace, trace::Error,
                  "error in shm_open error: " << syscalls::errnoText(errno));
    m_blockSync = allocatePrivate(SyncAreaSize);
    assert(m_blockSync != nullptr);
}

unsigned int WarmDatabase::getNumberOfFreeBlocks() const
{
    const BlockTable table(m_mappedMemory);
    unsigned int count = 0;
    for (unsigned int i = 0; i < table.size(); ++i) {
        count += table.isFree(i) ? 1 : 0;
    }
    TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                  "Max number of blocks available: " << NumberOfBlocks
                                                     << ", Number of free blocks: " << count);
    return count;
}

void WarmDatabase::logNamesOfUsedBlocks() const
{
    TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                  "Max number of blocks available: " << NumberOfBlocks);
    const BlockTable table(m_mappedMemory);
    for (unsigned int i = 0; i < table.size(); ++i) {
        if (!table.isFree(i)) {
            TRACE_MESSAGE(warmDatabaseTrace, trace::Information,
                          "Block[" << i + 1 << "] Name: " << table.nameOf(i).text());
        }
    }
}

} // namespace os::bsp::dtcm
