#include "LedSteps.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <sstream>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

const char* const Text = "interrupting";

std::string partial(int written, int left)
{
    return "bsp.led 3 Led_write(): Partial write: " + std::to_string(written) + " bytes written. " +
           std::to_string(left) + " left to write\n";
}

std::string violation(const std::string& expression)
{
    return "os_extensions/bsp/src/Led\\.cpp:[0-9]+: .*Assertion `" + expression + "' failed";
}

TEST(LedWrite, WritesAllAtOnce)
{
    SystemCalls calls;
    calls.writes = {{12}};
    EXPECT_EQ(led::Led_write(5, Text, 12), 12);
    EXPECT_THAT(calls.calls, ElementsAre("write 5 interrupting"));
    std::ostringstream entry;
    entry << "bsp.led 6 Led_write(5, " << static_cast<const void*>(Text) << ", 12) called\n";
    EXPECT_THAT(takeLines(), ElementsAre(entry.str()));
}

TEST(LedWrite, GoesOnAfterAPartialWriteAndReturnsTheLastResult)
{
    SystemCalls calls;
    calls.writes = {{5}, {6}, {1}};
    EXPECT_EQ(led::Led_write(5, Text, 12), 1);
    EXPECT_THAT(calls.calls, ElementsAre("write 5 interrupting", "write 5 rupting", "write 5 g"));
    EXPECT_THAT(takeLines(5), ElementsAre(partial(5, 7), partial(6, 1)));
}

TEST(LedWrite, EndsWhenNothingIsWritten)
{
    SystemCalls calls;
    calls.writes = {{3}, {0}};
    EXPECT_EQ(led::Led_write(0, Text, 12), 0);
    EXPECT_THAT(calls.calls, ElementsAre("write 0 interrupting", "write 0 errupting"));
    EXPECT_THAT(takeLines(5), ElementsAre(partial(3, 9)));
}

TEST(LedWrite, RepeatsAnInterruptedWrite)
{
    SystemCalls calls;
    calls.writes = {{-1, EINTR}, {-1, EINTR}, {4}, {-1, EINTR}, {8}};
    EXPECT_EQ(led::Led_write(5, Text, 12), 8);
    EXPECT_THAT(calls.calls,
                ElementsAre("write 5 interrupting", "write 5 interrupting", "write 5 interrupting",
                            "write 5 rrupting", "write 5 rrupting"));
    EXPECT_THAT(takeLines(5), ElementsAre(partial(4, 8)));
}

TEST(LedWrite, EndsAtAnyOtherFailure)
{
    for (const int error : {EIO, EINVAL, ENODEV, EAGAIN, ENOSPC, EBADF}) {
        SystemCalls calls;
        calls.writes = {{2}, {-1, error}};
        EXPECT_EQ(led::Led_write(5, Text, 12), -1);
        EXPECT_EQ(errno, error);
        EXPECT_THAT(takeLines(5), ElementsAre(partial(2, 10)));
    }
}

TEST(LedWriteDeathTest, RefusesNoDescriptorAndNoBuffer)
{
    EXPECT_DEATH(led::Led_write(-1, Text, 12), violation("fd >= 0"));
    EXPECT_DEATH(led::Led_write(5, nullptr, 12), violation("buf != 0"));
    EXPECT_DEATH(led::Led_write(-1, nullptr, 0), violation("fd >= 0"));
}

TEST(LedClose, Closes)
{
    SystemCalls calls;
    calls.closes = {{0}};
    EXPECT_EQ(led::Led_close(0), 0);
    EXPECT_THAT(calls.calls, ElementsAre("close 0"));
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_close(0) called\n"));
}

TEST(LedClose, ReportsAFailureAndDoesNotTryAgain)
{
    const std::pair<int, const char*> rows[] = {{EINTR, "Interrupted system call"},
                                                {EIO, "Input/output error"},
                                                {EBADF, "Bad file descriptor"}};
    for (const auto& [error, text] : rows) {
        SystemCalls calls;
        calls.closes = {{-1, error}};
        EXPECT_EQ(led::Led_close(9), -1);
        EXPECT_EQ(errno, error);
        EXPECT_THAT(takeLines(),
                    ElementsAre("bsp.led 6 Led_close(9) called\n",
                                std::string("bsp.led 1 Led_close(9): close failed. errno = ") +
                                    text + ".\n"));
    }
}

TEST(LedCloseDeathTest, RefusesNoDescriptor)
{
    EXPECT_DEATH(led::Led_close(-1), violation("fd >= 0"));
}

} // namespace
