/**
 * @file
 * @brief A forked process that is run instruction by instruction, and killed between two of them.
 */
#ifndef TESTS_FAULTS_STEPPEDPROCESS_H
#define TESTS_FAULTS_STEPPEDPROCESS_H

#include <cstddef>
#include <functional>

namespace faults
{

/** What a process does. */
struct Work
{
    std::function<void()> before; /**< Not looked at. */
    std::function<void()> work;   /**< When it returns the process ends at once. */
};

/**
 * Called before the first and behind each instruction, with whether that was a system call. brk and
 * getrandom do not count: how many there are depends on the heap and on chance.
 */
using Look = std::function<void(bool isSystemCall)>;

/** Runs a process to its end. @return the number of instructions of its work */
std::size_t runStepwise(const Work& work, const Look& look);

/**
 * Runs a process, and kills it so many system calls later and as soon as @p isThen is true, which
 * is asked behind each instruction. How many that are depends on the heap that it has inherited.
 */
void killWhen(const Work& work, std::size_t systemCalls, const std::function<bool()>& isThen);

} // namespace faults

#endif
