#ifndef TESTS_FIRMWARE_FAKETIME_H
#define TESTS_FIRMWARE_FAKETIME_H

#include "SystemCalls.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace firmware
{

/** A clock that only sleeping moves, so that nobody really waits. */
class FakeTime
{
public:
    FakeTime()
    {
        systemcalls::hooks().clock_gettime = [this](clockid_t clock, timespec* time) {
            EXPECT_EQ(clock, CLOCK_MONOTONIC);
            const auto now = std::chrono::hours(1) + m_passed;
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now);
            time->tv_sec = static_cast<time_t>(seconds.count());
            time->tv_nsec = static_cast<long>(std::chrono::nanoseconds(now - seconds).count());
            return 0;
        };
        systemcalls::hooks().nanosleep = [this](const timespec* duration, timespec*) {
            m_passed += std::chrono::seconds(duration->tv_sec) +
                        std::chrono::nanoseconds(duration->tv_nsec);
            ++m_sleeps;
            if (whileAsleep) {
                whileAsleep();
            }
            return 0;
        };
    }
    ~FakeTime()
    {
        systemcalls::hooks().clock_gettime = nullptr;
        systemcalls::hooks().nanosleep = nullptr;
    }
    FakeTime(const FakeTime&) = delete;
    FakeTime& operator=(const FakeTime&) = delete;

    std::chrono::milliseconds passed() const
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(m_passed);
    }
    int sleeps() const { return m_sleeps; }

    /** What happens meanwhile. */
    std::function<void()> whileAsleep;

private:
    std::chrono::nanoseconds m_passed{0};
    int m_sleeps = 0;
};

} // namespace firmware

#endif
