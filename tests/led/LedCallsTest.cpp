#include "Led.h"
#include "LedSteps.h"
#include "LedTest.h"
#include "RecordingTrace.h"

#include <cerrno>
#include <ostream>
#include <sstream>

namespace
{

using Lines = std::vector<std::string>;
using Steps = std::vector<systemcalls::Step>;
using recordingtrace::takeLines;
using testing::ElementsAre;

const std::string OpenState = "open /sys/class/leds/green/korvanta_state";
const std::string OpenTrigger = "open /sys/class/leds/green/trigger";
const std::string TriggerNotEnabled =
    "bsp.led 1 Led_open: Failed to enable Korvanta LED trigger.\n";

std::string closeFailed(const std::string& fd, const std::string& error)
{
    return "bsp.led 1 Led_close(" + fd + "): close failed. errno = " + error + ".\n";
}

/** The green LED is set to slow. */
struct Setting
{
    const char* name;
    Steps opens;
    Steps writes;
    Steps closes;
    int error; /**< 0 is success. */
    Lines calls;
    Lines messages; /**< Those up to level 5. */

    friend std::ostream& operator<<(std::ostream& stream, const Setting& setting)
    {
        return stream << setting.name;
    }
};

Setting row(const char* name, const Steps& opens, const Steps& writes, const Steps& closes,
            int error, const Lines& calls, const Lines& messages)
{
    return {name, opens, writes, closes, error, calls, messages};
}

const std::vector<Setting>& settings()
{
    const Lines trigger{OpenState, OpenTrigger, "write 6 korvanta", "close 6"};
    const Lines state{OpenState, "write 5 slow", "close 5"};
    const Lines both{OpenState, OpenTrigger,    "write 6 korvanta", "close 6",
                     OpenState, "write 7 slow", "close 7"};
    const Steps absent{{-1, ENOENT}, {6}, {7}};
    static const std::vector<Setting> table{
        row("AtOnce", {{5}}, {{4}}, {{0}}, 0, state, {}),
        row("OnDescriptor0", {{0}}, {{4}}, {{0}}, 0, {OpenState, "write 0 slow", "close 0"}, {}),
        row("ThatIsAbsent", absent, {{8}, {4}}, {{0}, {0}}, 0, both, {}),
        row("ThatIsForbidden", {{-1, EACCES}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}),
        row("ThatIsInterrupted", {{-1, EINTR}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}),
        row("WithoutDescriptors", {{-1, EMFILE}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}),
        row("TriggerCannotBeOpened", {{-1, ENOENT}, {-1, EACCES}}, {}, {}, EACCES,
            {OpenState, OpenTrigger},
            {"bsp.led 1 Led_enableTrigger: open failed. errno = Permission denied. "
             "triggerFilename = /sys/class/leds/green/trigger.\n",
             TriggerNotEnabled}),
        row("TriggerCannotBeWritten", {{-1, ENOENT}, {6}}, {{-1, EINVAL}}, {{0}}, EINVAL, trigger,
            {TriggerNotEnabled}),
        row("TriggerCanNeitherBeWrittenNorClosed", {{-1, ENOENT}, {6}}, {{-1, EINVAL}}, {{-1, EIO}},
            EINVAL, trigger, {closeFailed("6", "Input/output error"), TriggerNotEnabled}),
        row("TriggerCannotBeClosed", {{-1, ENOENT}, {6}}, {{8}}, {{-1, EINTR}}, EINTR, trigger,
            {closeFailed("6", "Interrupted system call"), TriggerNotEnabled}),
        row("TriggerInPieces", absent, {{3}, {-1, EINTR}, {5}, {4}}, {{0}, {0}}, 0,
            {OpenState, OpenTrigger, "write 6 korvanta", "write 6 vanta", "write 6 vanta",
             "close 6", OpenState, "write 7 slow", "close 7"},
            {partialWrite(3, 5)}),
        row("TriggerTakesNothing", absent, {{0}, {4}}, {{0}, {0}}, 0, both, {}),
        row("IsAbsentEvenThen", {{-1, ENOENT}, {6}, {-1, ENODEV}}, {{8}}, {{0}}, ENODEV,
            {OpenState, OpenTrigger, "write 6 korvanta", "close 6", OpenState},
            {"bsp.led 1 Led_open: open failed. errno = No such device. ledFilename = "
             "/sys/class/leds/green/korvanta_state.\n"}),
        row("ThatIsInvalid", {{5}}, {{-1, EINVAL}}, {{0}}, EINVAL, state, {}),
        row("ThatCannotBeWritten", {{5}}, {{-1, EIO}}, {{0}}, EIO, state, {}),
        row("ThatIsNotPermitted", {{5}}, {{-1, EPERM}}, {{0}}, EPERM, state, {}),
        row("CanNeitherBeWrittenNorClosed", {{5}}, {{2}, {-1, EIO}}, {{-1, EBADF}}, EIO,
            {OpenState, "write 5 slow", "write 5 ow", "close 5"},
            {partialWrite(2, 2), closeFailed("5", "Bad file descriptor")}),
        row("CannotBeClosed", {{5}}, {{4}}, {{-1, EIO}}, EIO, state,
            {closeFailed("5", "Input/output error")}),
        row("TakesNothing", {{5}}, {{0}}, {{0}}, 0, state, {}),
        row("InPieces", {{5}}, {{-1, EINTR}, {1}, {3}}, {{0}}, 0,
            {OpenState, "write 5 slow", "write 5 slow", "write 5 low", "close 5"},
            {partialWrite(1, 3)}),
    };
    return table;
}

class LedSetting : public testing::TestWithParam<Setting>
{};

TEST_P(LedSetting, MakesTheseCallsAndSaysWhatFailed)
{
    const LedCalls calls(GetParam().opens, GetParam().writes, GetParam().closes);
    errno = 0;
    EXPECT_EQ(Led_setState(2, 4), GetParam().error == 0 ? 0 : -1);
    if (GetParam().error != 0) {
        EXPECT_EQ(errno, GetParam().error);
    }
    EXPECT_EQ(systemcalls::take(), GetParam().calls);
    EXPECT_EQ(recordingtrace::takeLines(5), GetParam().messages);
}

INSTANTIATE_TEST_SUITE_P(All, LedSetting, testing::ValuesIn(settings()),
                         [](const auto& chosen) { return chosen.param.name; });

TEST(LedSetState, TracesItsSteps)
{
    const LedCalls calls({{5}}, {{4}}, {{0}});
    EXPECT_EQ(Led_setState(2, 4), 0);
    EXPECT_THAT(recordingtrace::takeLines(),
                testing::ElementsAre(
                    "bsp.led 6 Led_setState(2,4) called\n", "bsp.led 6 Led_open(2) called\n",
                    testing::MatchesRegex("bsp.led 6 Led_write\\(5, 0x[0-9a-f]+, 4\\) called\n"),
                    "bsp.led 6 Led_close(5) called\n"));
}

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
