#include "LedSteps.h"
#include "LedTest.h"
#include "RecordingTrace.h"

#include <cerrno>
#include <sstream>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

const char* const Text = "interrupting";

TEST(LedWrite, WritesAllAtOnce)
{
    const LedCalls calls({}, {{12}}, {});
    EXPECT_EQ(led::Led_write(5, Text, 12), 12);
    EXPECT_THAT(systemcalls::take(), ElementsAre("write 5 interrupting"));
    std::ostringstream entry;
    entry << "bsp.led 6 Led_write(5, " << static_cast<const void*>(Text) << ", 12) called\n";
    EXPECT_THAT(takeLines(), ElementsAre(entry.str()));
}

TEST(LedWrite, GoesOnAfterAPartialWriteAndReturnsTheLastResult)
{
    const LedCalls calls({}, {{5}, {6}, {1}}, {});
    EXPECT_EQ(led::Led_write(5, Text, 12), 1);
    EXPECT_THAT(systemcalls::take(),
                ElementsAre("write 5 interrupting", "write 5 rupting", "write 5 g"));
    EXPECT_THAT(takeLines(5), ElementsAre(partialWrite(5, 7), partialWrite(6, 1)));
}

TEST(LedWrite, EndsWhenNothingIsWritten)
{
    const LedCalls calls({}, {{3}, {0}}, {});
    EXPECT_EQ(led::Led_write(0, Text, 12), 0);
    EXPECT_THAT(systemcalls::take(), ElementsAre("write 0 interrupting", "write 0 errupting"));
    EXPECT_THAT(takeLines(5), ElementsAre(partialWrite(3, 9)));
}

TEST(LedWrite, RepeatsAnInterruptedWrite)
{
    const LedCalls calls({}, {{-1, EINTR}, {-1, EINTR}, {4}, {-1, EINTR}, {8}}, {});
    EXPECT_EQ(led::Led_write(5, Text, 12), 8);
    EXPECT_THAT(systemcalls::take(),
                ElementsAre("write 5 interrupting", "write 5 interrupting", "write 5 interrupting",
                            "write 5 rrupting", "write 5 rrupting"));
    EXPECT_THAT(takeLines(5), ElementsAre(partialWrite(4, 8)));
}

TEST(LedWrite, EndsAtAnyOtherFailure)
{
    for (const int error : {EIO, EINVAL, ENODEV, EAGAIN, ENOSPC, EBADF}) {
        const LedCalls calls({}, {{2}, {-1, error}}, {});
        EXPECT_EQ(led::Led_write(5, Text, 12), -1);
        EXPECT_EQ(errno, error);
        EXPECT_THAT(takeLines(5), ElementsAre(partialWrite(2, 10)));
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
    const LedCalls calls({}, {}, {{0}});
    EXPECT_EQ(led::Led_close(0), 0);
    EXPECT_THAT(systemcalls::take(), ElementsAre("close 0"));
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_close(0) called\n"));
}

TEST(LedClose, ReportsAFailureAndDoesNotTryAgain)
{
    const std::pair<int, const char*> rows[] = {{EINTR, "Interrupted system call"},
                                                {EIO, "Input/output error"},
                                                {EBADF, "Bad file descriptor"}};
    for (const auto& [error, text] : rows) {
        const LedCalls calls({}, {}, {{-1, error}});
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
