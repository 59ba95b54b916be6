#ifndef FUZZ_SUPPORT_CHILD_H
#define FUZZ_SUPPORT_CHILD_H

#include <functional>
#include <string>

namespace fuzz
{

/**
 * Does the work in a child process, for what is read once in the life of a process; gives what it
 * writes to the standard error stream and, after that, what the work returns.
 *
 * The child's coverage counts as this process's. The fuzzer ends when the child does not exit well.
 */
struct ChildResult
{
    std::string errors;
    std::string answer;
};
ChildResult inChild(const std::function<std::string()>& work);

} // namespace fuzz

#endif
