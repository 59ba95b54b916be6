/**
 * @file
 * @brief The system calls of the warm database, recorded from the beginning and made to fail.
 *
 * A test that uses it wraps what CMakeLists.txt lists for warm_test.
 */
#ifndef TESTS_WARM_WARMCALLS_H
#define TESTS_WARM_WARMCALLS_H

#include "SystemCalls.h"

namespace warmcalls
{

/** Called with the errno of each call that is made to fail. */
void setFailureObserver(std::function<void(int error)> observer);

/** The semaphore that sem_open gave last. */
sem_t* semaphore();

/** Value of that semaphore. */
int semaphoreValue();

} // namespace warmcalls

#endif
