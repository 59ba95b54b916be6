/**
 * @file
 * @brief The names that the processes of a board share, as another process has made them.
 */
#ifndef TESTS_WARM_SHAREDNAMES_H
#define TESTS_WARM_SHAREDNAMES_H

#include "WarmCalls.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>

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

#endif
