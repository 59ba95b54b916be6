/**
 * @file
 * @brief What the LED module's tests share: its names, what it says, its calls of the system.
 */
#ifndef TESTS_LED_LEDTEST_H
#define TESTS_LED_LEDTEST_H

#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <string>

#include <fcntl.h>

constexpr const char* ledNames[] = {"yellow", "red", "green"};
constexpr const char* stateNames[] = {"steady_off", "steady_on", "standby_hot", "standby_cold",
                                      "slow",       "fast",      "interrupting"};

/** What a violated assertion of the LED module says. */
inline std::string violation(const std::string& expression)
{
    return "os_extensions/bsp/src/Led\\.cpp:[0-9]+: .*Assertion `" + expression + "' failed";
}

inline std::string partialWrite(int written, int left)
{
    return "bsp.led 3 Led_write(): Partial write: " + std::to_string(written) + " bytes written. " +
           std::to_string(left) + " left to write\n";
}

/**
 * The module's calls of open, write and close do what has been queued for them. While one lives, no
 * call is made; one that is not queued fails the test.
 */
class LedCalls
{
public:
    LedCalls(const std::vector<systemcalls::Step>& opens,
             const std::vector<systemcalls::Step>& writes,
             const std::vector<systemcalls::Step>& closes)
    {
        systemcalls::queue("open", opens);
        systemcalls::queue("write", writes);
        systemcalls::queue("close", closes);
        systemcalls::hooks().open = [](const char* path, int flags, mode_t /*mode*/) {
            EXPECT_EQ(flags, O_WRONLY | O_CLOEXEC) << path;
            return call("open", path);
        };
        systemcalls::hooks().write = [](int fd, const void* data, std::size_t size) -> ssize_t {
            const std::string text(static_cast<const char*>(data), size);
            return call("write", std::to_string(fd) + ' ' + text);
        };
        systemcalls::hooks().close = [](int fd) { return call("close", std::to_string(fd)); };
    }
    ~LedCalls()
    {
        systemcalls::hooks() = {};
        systemcalls::take();
        EXPECT_THAT(systemcalls::left(), testing::IsEmpty()) << "calls that never came";
    }
    LedCalls(const LedCalls&) = delete;
    LedCalls& operator=(const LedCalls&) = delete;

private:
    static int call(const std::string& function, const std::string& arguments)
    {
        const auto step = systemcalls::next(function, arguments);
        EXPECT_TRUE(step) << "unexpected call: " << function << ' ' << arguments;
        return step ? step->result : systemcalls::fail(ENOSYS);
    }
};

#endif
