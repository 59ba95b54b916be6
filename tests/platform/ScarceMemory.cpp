#include "ScarceMemory.h"

#include <cstdlib>
#include <new>

namespace
{

/** How many allocations of this thread succeed; -1 is all. */
thread_local long allocationsLeft = -1;
bool isRefusedOnce = false;
bool wasRefused = false;

/** Does the work so that after so many allocations the next one fails, or all do. */
void workWith(long allocations, bool isOnce, const std::function<void()>& work)
{
    wasRefused = false;
    isRefusedOnce = isOnce;
    allocationsLeft = allocations;
    work();
    allocationsLeft = -1;
}

} // namespace

void* operator new(std::size_t size)
{
    if (allocationsLeft == 0) {
        wasRefused = true;
        allocationsLeft = isRefusedOnce ? -1 : 0;
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace testsupport
{

long untilItIsEnough(const std::function<void()>& work, const std::function<void()>& check)
{
    for (long count = 0;; ++count) {
        for (const bool isOnce : {true, false}) {
            workWith(count, isOnce, work);
            const bool wasEnough = !wasRefused;
            check();
            if (wasEnough) {
                return count;
            }
        }
    }
}

void withoutMemory(const std::function<void()>& work)
{
    workWith(0, false, work);
}

} // namespace testsupport
