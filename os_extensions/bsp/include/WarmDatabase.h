/**
 * @file
 * @brief Small named objects that all processes share and that survive a warm restart.
 *
 * The store is 32 blocks of 1024 bytes in the board's DTCM: 16 bytes for the object's name, 1008
 * for its data. It is cleared after a cold restart, by the first process that uses it. An object is
 * known by its name alone; its size is not stored. Blocks are never given back one by one.
 *
 * The store never locks an object's mutex and does not guard an object's data: callers lock the
 * mutex that getObjectData hands out around every access, or one of their own inside the object.
 *
 * The first process that uses the store owns the names "/DtcmDbSharedSem" and "/DtcmSync" and takes
 * them away when it exits. While it lives, every process locks the same semaphore and mutexes;
 * processes that outlive it keep the old ones, and later processes get new ones.
 *
 * Failures go to the trace channel "Bsp.WarmDatabase" at level 1. Where the DTCM cannot be mapped
 * the process works on a private, empty store.
 */
#ifndef BSP_WARMDATABASE_H
#define BSP_WARMDATABASE_H

#include "BspExport.h"

#ifdef __cplusplus

#include <cstddef>
#include <mutex>
#include <string>

#include <semaphore.h>

namespace os
{
namespace bsp
{
namespace dtcm
{

/** The store. All operations may be called from any thread and by any number of processes. */
class BSP_API WarmDatabase
{
public:
    /** Holds a semaphore for the life of the guard; does nothing with a null pointer. */
    class BSP_API SemLockGuard
    {
    public:
        /** Takes the semaphore. */
        explicit SemLockGuard(sem_t* semaphore);
        ~SemLockGuard();
        SemLockGuard(const SemLockGuard&) = delete;
        SemLockGuard& operator=(const SemLockGuard&) = delete;

    private:
        sem_t* m_semaphore;
    };

    /** The process's store, made at the first call and destroyed at exit. */
    static WarmDatabase& getInstance();

    WarmDatabase(const WarmDatabase&) = delete;
    WarmDatabase& operator=(const WarmDatabase&) = delete;

    /** Takes the store's semaphore, which guards the table of blocks; it is not recursive. */
    void lock();
    /** Gives the store's semaphore back. */
    void unlock();

    /** Number of blocks without a name, of all 32. Takes no lock. */
    unsigned int getNumberOfFreeBlocks() const;

    /** Lists the used blocks in the trace, at level 5. Takes no lock. */
    void logNamesOfUsedBlocks() const;

    /** Whether the name (at most 15 bytes) and the size (at most 1008) fit a block. */
    bool validateObject(const std::string& name, unsigned int objectSize);

    /**
     * Creates an object with all its data 0; an object of that name is wiped.
     *
     * @param name        name of the object
     * @param object      receives the object's data, or null on failure
     * @param objectSize  size of the object in bytes
     * @param lock        whether to take the store's semaphore
     * @return false when name or size do not fit, or all blocks are used by other names
     */
    bool createObject(const std::string& name, void** object, unsigned int objectSize, bool lock);

    /** Finds an object; as createObject, but false when there is no object of that name. */
    bool retrieveObject(const std::string& name, void** object, unsigned int objectSize, bool lock);

    /**
     * Finds an object, or creates it; of all processes exactly one is told that it did so.
     *
     * @param name        name of the object
     * @param object      receives the object's data, or null on failure
     * @param objectSize  size of the object in bytes
     * @param sync        receives the mutex of the object's block, shared by all processes; null
     *                    on failure and for the empty name
     * @param created     receives whether this call created the object
     * @return false when name or size do not fit, or all blocks are used by other names
     */
    bool getObjectData(const std::string& name, void** object, unsigned int objectSize,
                       std::mutex** sync, bool& created);

    /** The mutex of the block with that name, or null. The caller holds the semaphore. */
    std::mutex* getObjectSyncPointer(const std::string& name);

private:
    BSP_LOCAL WarmDatabase();
    BSP_LOCAL ~WarmDatabase();

    BSP_LOCAL void memoryMapTheDatabase();
    BSP_LOCAL bool initDatabaseSemaphore();
    BSP_LOCAL void clearDatabaseIfColdRestart();
    BSP_LOCAL void initBlockSynchronization();

    unsigned char* m_mappedMemory = nullptr;
    unsigned char* m_blockSync = nullptr;
    sem_t* m_dbSemaphore = nullptr;
    bool m_ownsDbSemaphore = false;
    bool m_ownsBlockSync = false;
};

} // namespace dtcm
} // namespace bsp
} // namespace os

extern "C"
{
#else
#include <stdbool.h>
#endif

    /**
     * Creates an object with all its data 0; an object of that name is wiped.
     *
     * @param name        name of the object, at most 15 bytes
     * @param object      receives the object's data, or null on failure; the data stays where it
     *                    is for the life of the process
     * @param objectSize  size of the object in bytes, at most 1008
     * @return 0, or -1 when name or size do not fit or the store is full
     */
    BSP_API int WarmDatabase_createObject(const char* name, void** object, unsigned int objectSize);

    /** Finds an object; as WarmDatabase_createObject, but -1 when there is none of that name. */
    BSP_API int WarmDatabase_retrieveObject(const char* name, void** object,
                                            unsigned int objectSize);

    /**
     * Finds an object, or creates it; of all processes exactly one is told that it did so.
     *
     * @param name        name of the object, at most 15 bytes
     * @param object      receives the object's data, or null on failure
     * @param objectSize  size of the object in bytes, at most 1008
     * @param sync        receives the mutex of the object's block, a process-shared
     *                    pthread_mutex_t; untouched on failure
     * @param created     receives whether this call created the object; false on failure
     * @return 0, or -1 when name or size do not fit or the store is full
     */
    BSP_API int WarmDatabase_getObjectData(const char* name, void** object, unsigned int objectSize,
                                           void** sync, bool* created);

#ifdef __cplusplus
}
#endif

#endif
