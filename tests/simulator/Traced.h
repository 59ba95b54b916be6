/**
 * @file
 * @brief Stops a program at its N-th system call, to do something at that very moment.
 */
#ifndef TESTS_SIMULATOR_TRACED_H
#define TESTS_SIMULATOR_TRACED_H

#include "Program.h"

#include <functional>

namespace testsupport
{

/** Whether programs can be stopped here: not those that an emulator runs. */
bool canTrace();

/**
 * Starts a program without a standard error, calls the action when it is about to make the system
 * call of this number, and waits for its end.
 *
 * @return false when the program ended before that system call; the action was not called then
 */
bool actAtCall(const Program& program, int number, const std::function<void(pid_t)>& action);

/** How many system calls a program makes until it ends. */
int countCalls(const Program& program);

} // namespace testsupport

#endif
