/**
 * @file
 * @brief Waiting for who uses the temporary file: a clock of the test's own, and such a user.
 */
#ifndef TESTS_FIRMWARE_WAITING_H
#define TESTS_FIRMWARE_WAITING_H

#include "KernelQuery.h"
#include "SystemCalls.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

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

    /** Expects that somebody was waited for as long as anybody is. */
    void expectTenSeconds() const { EXPECT_EQ(passed(), std::chrono::seconds(10)); }

    /** What happens meanwhile. */
    std::function<void()> whileAsleep;

private:
    std::chrono::nanoseconds m_passed{0};
    int m_sleeps = 0;
};

/** A process that asks for the image's R-state, but stops while it uses the temporary file. */
class StuckCaller
{
public:
    /** @param prepare  what the process does first */
    explicit StuckCaller(
        const std::string& image, const std::function<void()>& prepare = [] {})
    {
        std::array<int, 2> ready{};
        std::array<int, 2> goOn{};
        EXPECT_EQ(::pipe(ready.data()), 0);
        EXPECT_EQ(::pipe(goOn.data()), 0);
        m_process = ::fork();
        if (m_process == 0) {
            ::close(goOn[1]);
            prepare();
            // The file is made, locked and partly written when the second chunk is read.
            int reads = 0;
            systemcalls::hooks().read = [&](int fd, void* buffer, std::size_t size) {
                if (++reads == 3) {
                    char byte = 'r';
                    EXPECT_EQ(::write(ready[1], &byte, 1), 1);
                    EXPECT_EQ(systemcalls::real().read(goOn[0], &byte, 1), 1);
                }
                return systemcalls::real().read(fd, buffer, size);
            };
            ::_exit(askFile(image).result == 0 ? 0 : 1);
        }
        ::close(ready[1]);
        ::close(goOn[0]);
        m_goOn = goOn[1];
        char byte = 0;
        EXPECT_EQ(systemcalls::real().read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
    }
    ~StuckCaller()
    {
        kill();
        ::close(m_goOn);
    }
    StuckCaller(const StuckCaller&) = delete;
    StuckCaller& operator=(const StuckCaller&) = delete;

    void kill()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
            m_process = 0;
        }
    }

    /** Lets it go on. Returns whether it got an answer. */
    bool finish()
    {
        EXPECT_EQ(::write(m_goOn, "g", 1), 1);
        int status = -1;
        EXPECT_EQ(::waitpid(m_process, &status, 0), m_process);
        m_process = 0;
        return status == 0;
    }

private:
    pid_t m_process = 0;
    int m_goOn = -1;
};

} // namespace firmware

#endif
