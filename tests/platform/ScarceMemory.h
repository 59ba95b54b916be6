#ifndef TESTS_PLATFORM_SCARCEMEMORY_H
#define TESTS_PLATFORM_SCARCEMEMORY_H

#include <functional>

namespace testsupport
{

/**
 * Does the work with memory for no allocation, for one, for two and so on, until it was enough.
 * Each number has two tries: in the first only the next allocation fails, in the second all do.
 *
 * @param check  called after each try, with memory for everything
 * @return how many allocations the work needs
 */
long untilItIsEnough(
    const std::function<void()>& work, const std::function<void()>& check = [] {});

/** Does the work with no memory at all. */
void withoutMemory(const std::function<void()>& work);

} // namespace testsupport

#endif
