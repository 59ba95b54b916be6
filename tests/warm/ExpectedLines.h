/**
 * @file
 * @brief System calls and messages of the warm database as the tests record them.
 */
#ifndef TESTS_WARM_EXPECTEDLINES_H
#define TESTS_WARM_EXPECTEDLINES_H

#include <string>

#include <pthread.h>

namespace expectedlines
{

inline const std::string syncSize = std::to_string(32 * sizeof(pthread_mutex_t));
inline const std::string mapArea = "mmap 32768 read-write shared locked at 0";
inline const std::string mapSync = "mmap " + syncSize + " read-write shared locked at 0";
inline const std::string createSemaphore = "sem_open /DtcmDbSharedSem O_CREAT O_EXCL 0666 0";
inline const std::string openSemaphore = "sem_open /DtcmDbSharedSem O_EXCL";
inline const std::string openSync = "shm_open /DtcmSync O_RDWR 0000";
inline const std::string createSync = "shm_open /DtcmSync O_RDWR O_CREAT 0666";

inline const std::string prefix = "Bsp.WarmDatabase ";
inline const std::string freeTable =
    prefix + "5 logNamesOfUsedBlocks(): Max number of blocks available: 32";
inline const std::string cold =
    prefix + "5 clearDatabaseIfColdRestart(): COLD restart, clearing database.";
inline const std::string warm =
    prefix + "5 clearDatabaseIfColdRestart(): WARM restart, leaving database as is.";

/** Line of a used block in the listing. */
inline std::string used(int number, const std::string& name)
{
    return prefix + "5 logNamesOfUsedBlocks(): Block[" + std::to_string(number) + "] Name: " + name;
}

} // namespace expectedlines

#endif
