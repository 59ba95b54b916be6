#include "CountedAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<long> allocations{0};
std::atomic<long> failures{0};

/** Whether this allocation is one that is to fail. */
bool fails()
{
    long left = failures.load(std::memory_order_relaxed);
    while (left > 0 && !failures.compare_exchange_weak(left, left - 1)) {
    }
    return left > 0;
}

} // namespace

long testsupport::countedAllocations()
{
    return allocations.load(std::memory_order_relaxed);
}

void testsupport::failAllocations(long count)
{
    failures = count;
}

void* operator new(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
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
