#include "Led.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string OpenState = "open /sys/class/leds/green/korvanta_state";
const std::string OpenTrigger = "open /sys/class/leds/green/trigger";
const std::string TriggerNotEnabled =
    "bsp.led 1 Led_open: Failed to enable Korvanta LED trigger.\n";

constexpr unsigned int Green = 2;
constexpr unsigned int Slow = 4;

/** Sets the green LED to slow, expecting a failure with that errno. */
void expectFailure(int error)
{
    errno = 0;
    EXPECT_EQ(Led_setState(Green, Slow), -1);
    EXPECT_EQ(errno, error);
}

TEST(LedCalls, AreOneOpenAndOneWriteWhenTheTriggerIsActive)
{
    SystemCalls calls;
    calls.opens = {{5}};
    calls.writes = {{4}};
    calls.closes = {{0}};
    EXPECT_EQ(Led_setState(Green, Slow), 0);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 5 slow", "close 5"));
    const std::vector<std::string> lines = takeLines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "bsp.led 6 Led_setState(2,4) called\n");
    EXPECT_EQ(lines[1], "bsp.led 6 Led_open(2) called\n");
    EXPECT_THAT(lines[2],
                testing::MatchesRegex("bsp.led 6 Led_write\\(5, 0x[0-9a-f]+, 4\\) called\n"));
    EXPECT_EQ(lines[3], "bsp.led 6 Led_close(5) called\n");
}

TEST(LedCalls, TakeDescriptor0)
{
    SystemCalls calls;
    calls.opens = {{0}};
    calls.writes = {{4}};
    calls.closes = {{0}};
    EXPECT_EQ(Led_setState(Green, Slow), 0);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 0 slow", "close 0"));
}

TEST(LedCalls, EnableTheTriggerWheneverTheStateCannotBeOpened)
{
    for (const int error : {ENOENT, EACCES, EINTR, EMFILE}) {
        SystemCalls calls;
        calls.opens = {{-1, error}, {6}, {7}};
        calls.writes = {{8}, {4}};
        calls.closes = {{0}, {0}};
        EXPECT_EQ(Led_setState(Green, Slow), 0);
        EXPECT_THAT(calls.calls, ElementsAre(OpenState, OpenTrigger, "write 6 korvanta", "close 6",
                                             OpenState, "write 7 slow", "close 7"));
        EXPECT_THAT(takeLines(5), IsEmpty());
    }
}

TEST(LedCalls, FailWhenTheTriggerCannotBeOpened)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {-1, EACCES}};
    expectFailure(EACCES);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, OpenTrigger));
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 1 Led_enableTrigger: open failed. errno = Permission denied. "
                            "triggerFilename = /sys/class/leds/green/trigger.\n",
                            TriggerNotEnabled));
}

TEST(LedCalls, FailWhenTheTriggerCannotBeWritten)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}};
    calls.writes = {{-1, EINVAL}};
    calls.closes = {{0}};
    expectFailure(EINVAL);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, OpenTrigger, "write 6 korvanta", "close 6"));
    EXPECT_THAT(takeLines(5), ElementsAre(TriggerNotEnabled));
}

TEST(LedCalls, KeepTheWritesErrorWhenTheCloseFailsToo)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}};
    calls.writes = {{-1, EINVAL}};
    calls.closes = {{-1, EIO}};
    expectFailure(EINVAL);
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 1 Led_close(6): close failed. errno = Input/output error.\n",
                            TriggerNotEnabled));
}

TEST(LedCalls, FailWhenTheTriggerCannotBeClosed)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}};
    calls.writes = {{8}};
    calls.closes = {{-1, EINTR}};
    expectFailure(EINTR);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, OpenTrigger, "write 6 korvanta", "close 6"));
    EXPECT_THAT(
        takeLines(5),
        ElementsAre("bsp.led 1 Led_close(6): close failed. errno = Interrupted system call.\n",
                    TriggerNotEnabled));
}

TEST(LedCalls, WriteTheTriggerInPieces)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}, {7}};
    calls.writes = {{3}, {-1, EINTR}, {5}, {4}};
    calls.closes = {{0}, {0}};
    EXPECT_EQ(Led_setState(Green, Slow), 0);
    EXPECT_THAT(calls.calls,
                ElementsAre(OpenState, OpenTrigger, "write 6 korvanta", "write 6 vanta",
                            "write 6 vanta", "close 6", OpenState, "write 7 slow", "close 7"));
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 3 Led_write(): Partial write: 3 bytes written. 5 left to "
                            "write\n"));
}

TEST(LedCalls, GoOnWhenTheTriggerTakesNothing)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}, {7}};
    calls.writes = {{0}, {4}};
    calls.closes = {{0}, {0}};
    EXPECT_EQ(Led_setState(Green, Slow), 0);
    EXPECT_THAT(takeLines(5), IsEmpty());
}

TEST(LedCalls, FailWhenTheStateCannotBeOpenedEvenThen)
{
    SystemCalls calls;
    calls.opens = {{-1, ENOENT}, {6}, {-1, ENODEV}};
    calls.writes = {{8}};
    calls.closes = {{0}};
    expectFailure(ENODEV);
    EXPECT_THAT(calls.calls,
                ElementsAre(OpenState, OpenTrigger, "write 6 korvanta", "close 6", OpenState));
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 1 Led_open: open failed. errno = No such device. ledFilename "
                            "= /sys/class/leds/green/korvanta_state.\n"));
}

TEST(LedCalls, FailWhenTheStateCannotBeWritten)
{
    for (const int error : {EINVAL, EIO, EPERM}) {
        SystemCalls calls;
        calls.opens = {{5}};
        calls.writes = {{-1, error}};
        calls.closes = {{0}};
        expectFailure(error);
        EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 5 slow", "close 5"));
        EXPECT_THAT(takeLines(5), IsEmpty());
    }
}

TEST(LedCalls, FailWithTheWritesErrorWhenTheStateCannotBeClosedEither)
{
    SystemCalls calls;
    calls.opens = {{5}};
    calls.writes = {{2}, {-1, EIO}};
    calls.closes = {{-1, EBADF}};
    expectFailure(EIO);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 5 slow", "write 5 ow", "close 5"));
    EXPECT_THAT(
        takeLines(1),
        ElementsAre("bsp.led 1 Led_close(5): close failed. errno = Bad file descriptor.\n"));
}

TEST(LedCalls, FailWhenTheStateCannotBeClosed)
{
    SystemCalls calls;
    calls.opens = {{5}};
    calls.writes = {{4}};
    calls.closes = {{-1, EIO}};
    expectFailure(EIO);
    EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 5 slow", "close 5"));
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 1 Led_close(5): close failed. errno = Input/output error.\n"));
}

TEST(LedCalls, SucceedWhenTheStateTakesNothingOrPieces)
{
    {
        SystemCalls calls;
        calls.opens = {{5}};
        calls.writes = {{0}};
        calls.closes = {{0}};
        EXPECT_EQ(Led_setState(Green, Slow), 0);
        EXPECT_THAT(calls.calls, ElementsAre(OpenState, "write 5 slow", "close 5"));
    }
    SystemCalls calls;
    calls.opens = {{5}};
    calls.writes = {{-1, EINTR}, {1}, {3}};
    calls.closes = {{0}};
    EXPECT_EQ(Led_setState(Green, Slow), 0);
    EXPECT_THAT(calls.calls,
                ElementsAre(OpenState, "write 5 slow", "write 5 slow", "write 5 low", "close 5"));
    EXPECT_THAT(takeLines(5),
                ElementsAre("bsp.led 3 Led_write(): Partial write: 1 bytes written. 3 left to "
                            "write\n"));
}

} // namespace
