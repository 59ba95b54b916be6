#include "LedSteps.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

const std::string Base = "/sys/class/leds/";

TEST(LedPath, NamesTheFileOfTheLed)
{
    led::Path path{};
    EXPECT_TRUE(led::buildPath(path, "green", "korvanta_state"));
    EXPECT_STREQ(path.data(), "/sys/class/leds/green/korvanta_state");
    EXPECT_TRUE(led::buildPath(path, "green", "trigger"));
    EXPECT_STREQ(path.data(), "/sys/class/leds/green/trigger");
}

TEST(LedPath, HoldsUpTo63Characters)
{
    led::Path path{};
    for (const std::size_t length : {62U, 63U, 64U, 65U, 200U}) {
        const std::string name(length - Base.size() - 2, 'n');
        const std::string whole = Base + name + "/f";
        ASSERT_EQ(whole.size(), length);
        EXPECT_EQ(led::buildPath(path, name.c_str(), "f"), length < 64) << length;
        EXPECT_EQ(path.data(), whole.substr(0, 63)) << length;
    }
}

TEST(LedPath, IsRefusedByOpenWhenTooLong)
{
    const std::string name(33, 'n'); // with "/sys/class/leds/" and "/korvanta_state" 64 characters
    errno = 0;
    EXPECT_EQ(led::Led_open(1, name.c_str()), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.led 6 Led_open(1) called\n",
                            "bsp.led 1 Led_open(" + Base + name + "/korvanta_stat" +
                                "): Name too long. Please increase ledFilename array size.\n"));
}

TEST(LedPath, IsRefusedByEnableTriggerWhenTooLong)
{
    const std::string name(40, 'n'); // with "/sys/class/leds/" and "/trigger" 64 characters
    errno = 0;
    EXPECT_EQ(led::Led_enableTrigger(2, name.c_str()), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.led 6 Led_enableTrigger(2) called\n",
                            "bsp.led 1 Led_enableTrigger(" + Base + name + "/trigge" +
                                "): Name too long. Please increase triggerFilename array size.\n"));
}

TEST(LedPath, IsTriedAtTheLongestThatFits)
{
    const std::string name(32, 'n');
    EXPECT_EQ(led::Led_open(0, name.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_THAT(takeLines(1),
                ElementsAre("bsp.led 1 Led_enableTrigger: open failed. errno = No such file or "
                            "directory. triggerFilename = " +
                                Base + name + "/trigger.\n",
                            "bsp.led 1 Led_open: Failed to enable Korvanta LED trigger.\n"));
}

} // namespace
