/**
 * @file
 * @brief The system calls of the warm database, recorded and made to fail.
 *
 * A test that uses it wraps what CMakeLists.txt lists as system_calls.
 */
#ifndef TESTS_WARM_SYSTEMCALLS_H
#define TESTS_WARM_SYSTEMCALLS_H

#include <string>
#include <vector>

#include <semaphore.h>

namespace systemcalls
{

/** Makes the next call of a function that has no error queued fail with that errno; 0 succeeds. */
void queue(const std::string& function, int error);

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
