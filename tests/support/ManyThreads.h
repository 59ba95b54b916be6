#ifndef TESTS_SUPPORT_MANYTHREADS_H
#define TESTS_SUPPORT_MANYTHREADS_H

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace testsupport
{

/** Calls the function with its number in so many threads, all beginning at once. */
template <typename Function> void inManyThreads(std::size_t count, Function function)
{
    std::atomic<std::size_t> ready{0};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < count; ++number) {
        threads.emplace_back([&ready, &function, count, number] {
            ++ready;
            while (ready < count) {
                std::this_thread::yield();
            }
            function(number);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace testsupport

#endif
