#include "Allocations.h"

#include <climits>
#include <cstdlib>
#include <new>

namespace
{

struct Allocations
{
    long count;
    long left; /**< How many succeed before the failures. */
    long failures;
    long failed;
};

thread_local Allocations allocations{};
testsupport::Observer observer = nullptr;

bool fails()
{
    ++allocations.count;
    if (allocations.failures == 0 || allocations.left > 0) {
        allocations.left -= allocations.left > 0 ? 1 : 0;
        return false;
    }
    --allocations.failures;
    ++allocations.failed;
    return true;
}

} // namespace

long testsupport::countedAllocations()
{
    return allocations.count;
}

void testsupport::failAllocations(long count)
{
    allocations.left = 0;
    allocations.failures = count;
}

long testsupport::untilItIsEnough(const std::function<void()>& work,
                                  const std::function<void()>& check)
{
    for (long enough = 0;; ++enough) {
        for (const long failures : {1L, LONG_MAX}) {
            const long before = allocations.failed;
            allocations.left = enough;
            allocations.failures = failures;
            work();
            failAllocations(0);
            const bool wasEnough = allocations.failed == before;
            check();
            if (wasEnough) {
                return enough;
            }
        }
    }
}

void testsupport::observeAllocations(Observer newObserver)
{
    observer = newObserver;
}

void* operator new(std::size_t size)
{
    if (observer != nullptr) {
        observer(size);
    }
    if (void* memory = fails() ? nullptr : std::malloc(size)) {
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

// The sanitizers' forms for arrays would not come here.

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*unused*/) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
