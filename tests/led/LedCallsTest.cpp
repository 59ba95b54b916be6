#include "Led.h"
#include "LedTest.h"
#include "RecordingTrace.h"

#include <cerrno>
#include <ostream>

namespace
{

using Lines = std::vector<std::string>;
using Steps = std::vector<systemcalls::Step>;

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

const std::vector<Setting>& settings()
{
    const Lines trigger{OpenState, OpenTrigger, "write 6 korvanta", "close 6"};
    const Lines state{OpenState, "write 5 slow", "close 5"};
    const Lines both{OpenState, OpenTrigger,    "write 6 korvanta", "close 6",
                     OpenState, "write 7 slow", "close 7"};
    const Steps absent{{-1, ENOENT}, {6}, {7}};
    static const std::vector<Setting> table{
        {"AtOnce", {{5}}, {{4}}, {{0}}, 0, state, {}},
        {"OnDescriptor0", {{0}}, {{4}}, {{0}}, 0, {OpenState, "write 0 slow", "close 0"}, {}},
        {"ThatIsAbsent", absent, {{8}, {4}}, {{0}, {0}}, 0, both, {}},
        {"ThatIsForbidden", {{-1, EACCES}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}},
        {"ThatIsInterrupted", {{-1, EINTR}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}},
        {"WithoutDescriptors", {{-1, EMFILE}, {6}, {7}}, {{8}, {4}}, {{0}, {0}}, 0, both, {}},
        {"TriggerCannotBeOpened",
         {{-1, ENOENT}, {-1, EACCES}},
         {},
         {},
         EACCES,
         {OpenState, OpenTrigger},
         {"bsp.led 1 Led_enableTrigger: open failed. errno = Permission denied. "
          "triggerFilename = /sys/class/leds/green/trigger.\n",
          TriggerNotEnabled}},
        {"TriggerCannotBeWritten",
         {{-1, ENOENT}, {6}},
         {{-1, EINVAL}},
         {{0}},
         EINVAL,
         trigger,
         {TriggerNotEnabled}},
        {"TriggerCanNeitherBeWrittenNorClosed",
         {{-1, ENOENT}, {6}},
         {{-1, EINVAL}},
         {{-1, EIO}},
         EINVAL,
         trigger,
         {closeFailed("6", "Input/output error"), TriggerNotEnabled}},
        {"TriggerCannotBeClosed",
         {{-1, ENOENT}, {6}},
         {{8}},
         {{-1, EINTR}},
         EINTR,
         trigger,
         {closeFailed("6", "Interrupted system call"), TriggerNotEnabled}},
        {"TriggerInPieces",
         absent,
         {{3}, {-1, EINTR}, {5}, {4}},
         {{0}, {0}},
         0,
         {OpenState, OpenTrigger, "write 6 korvanta", "write 6 vanta", "write 6 vanta", "close 6",
          OpenState, "write 7 slow", "close 7"},
         {partialWrite(3, 5)}},
        {"TriggerTakesNothing", absent, {{0}, {4}}, {{0}, {0}}, 0, both, {}},
        {"IsAbsentEvenThen",
         {{-1, ENOENT}, {6}, {-1, ENODEV}},
         {{8}},
         {{0}},
         ENODEV,
         {OpenState, OpenTrigger, "write 6 korvanta", "close 6", OpenState},
         {"bsp.led 1 Led_open: open failed. errno = No such device. ledFilename = "
          "/sys/class/leds/green/korvanta_state.\n"}},
        {"ThatIsInvalid", {{5}}, {{-1, EINVAL}}, {{0}}, EINVAL, state, {}},
        {"ThatCannotBeWritten", {{5}}, {{-1, EIO}}, {{0}}, EIO, state, {}},
        {"ThatIsNotPermitted", {{5}}, {{-1, EPERM}}, {{0}}, EPERM, state, {}},
        {"CanNeitherBeWrittenNorClosed",
         {{5}},
         {{2}, {-1, EIO}},
         {{-1, EBADF}},
         EIO,
         {OpenState, "write 5 slow", "write 5 ow", "close 5"},
         {partialWrite(2, 2), closeFailed("5", "Bad file descriptor")}},
        {"CannotBeClosed",
         {{5}},
         {{4}},
         {{-1, EIO}},
         EIO,
         state,
         {closeFailed("5", "Input/output error")}},
        {"TakesNothing", {{5}}, {{0}}, {{0}}, 0, state, {}},
        {"InPieces",
         {{5}},
         {{-1, EINTR}, {1}, {3}},
         {{0}},
         0,
         {OpenState, "write 5 slow", "write 5 slow", "write 5 low", "close 5"},
         {partialWrite(1, 3)}},
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

} // namespace
