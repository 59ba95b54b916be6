/**
 * @file
 * @brief The first use of the warm area: its system calls and messages as the tests record them,
 * and the names that the processes of a board share.
 */
#ifndef TESTS_WARM_AREATEST_H
#define TESTS_WARM_AREATEST_H

#include "RecordingTrace.h"
#include "WarmBoard.h"
#include "WarmCalls.h"
#include "WarmDatabase.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace areatest
{

using os::bsp::dtcm::WarmDatabase;
using recordingtrace::takeLines;
using Lines = std::vector<std::string>;

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

/** Makes the names, with the semaphore's value and "mine" in the first mutex. */
inline void makeSharedNames(unsigned int semaphoreValue)
{
    ASSERT_NE(::sem_open("/DtcmDbSharedSem", O_CREAT | O_EXCL, 0666, semaphoreValue), SEM_FAILED);
    const int fd = ::shm_open("/DtcmSync", O_RDWR | O_CREAT, 0666);
    ASSERT_NE(fd, -1);
    ASSERT_EQ(::ftruncate(fd, static_cast<off_t>(32 * sizeof(pthread_mutex_t))), 0);
    ASSERT_EQ(::pwrite(fd, "mine", 4, 0), 4);
    ::close(fd);
    systemcalls::take();
}

} // namespace areatest

#endif
