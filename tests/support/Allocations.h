/**
 * @file
 * @brief Counts what a thread allocates with operator new, and refuses it memory.
 *
 * Linking this replaces the operator, also the forms of it that the sanitizers bring.
 */
#ifndef TESTS_SUPPORT_ALLOCATIONS_H
#define TESTS_SUPPORT_ALLOCATIONS_H

#include <cstddef>
#include <functional>

namespace testsupport
{

/** How often this thread has called operator new. */
long countedAllocations();

/** Makes the next so many calls of this thread fail; 0 ends what an earlier call of this began. */
void failAllocations(long count);

/**
 * Does the work with memory for no allocation, for one, for two and so on, until it was enough.
 * Each number has two tries: in the first only the next allocation fails, in the second all do.
 *
 * @param check  called after each try, with memory for everything
 * @return how many allocations the work needs
 */
long untilItIsEnough(
    const std::function<void()>& work, const std::function<void()>& check = [] {});

/** From now on called with the size of each allocation; may throw std::bad_alloc. */
using Observer = void (*)(std::size_t size);
void observeAllocations(Observer observer);

} // namespace testsupport

#endif
