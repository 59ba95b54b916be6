/**
 * @file
 * @brief The system calls of the warm database, recorded and made to fail.
 *
 * A test that uses it wraps what CMakeLists.txt lists as system_calls.
 */
#ifndef TESTS_WARM_SYSTEMCALLS_H
#define TESTS_WARM_SYSTEMCALLS_H

#include <functional>
#include <string>
#include <vector>

#include <semaphore.h>

namespace systemcalls
{

/** Makes the next call of a function that has no error queued fail with that errno; 0 succeeds. */
void queue(const std::string& function, int error);

/** Calls the function with the errno of each call that is made to fail. */
void setFailureObserver(std::function<void(int error)> observer);

/** Writes a line among the calls. */
void note(const std::string& line);

/** All calls and notes since the last call of this, one line each. */
std::vector<std::string> take();

/** From now on each line is also written to standard error. */
void echo();

/** The semaphore that sem_open gave last. */
sem_t* semaphore();

/** Value of that semaphore. */
int semaphoreValue();

} // namespace systemcalls

#endif
