/**
 * @file
 * @brief Mutexes in memory that processes share.
 */
#ifndef BSP_SHARED_SHAREDMUTEX_H
#define BSP_SHARED_SHAREDMUTEX_H

#include <mutex>

#include <pthread.h>

namespace os::bsp
{

// They are locked through the interface of std::mutex.
static_assert(sizeof(std::mutex) == sizeof(pthread_mutex_t) &&
                  alignof(std::mutex) == alignof(pthread_mutex_t),
              "a std::mutex is a pthread_mutex_t and nothing else");

/** Makes what lies there a mutex that all processes can lock. */
inline void initSharedMutex(pthread_mutex_t* mutex)
{
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    ::pthread_mutex_init(mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

/** The mutex under the interface through which it is locked. */
inline std::mutex* lockable(pthread_mutex_t* mutex)
{
    return reinterpret_cast<std::mutex*>(mutex);
}

} // namespace os::bsp

#endif
