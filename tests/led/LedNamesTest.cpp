#include "Led.h"
#include "LedSteps.h"
#include "LedTest.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace
{

using recordingtrace::takeLines;
using namespace testing;

TEST(LedNames, GoFromNumberToNameAndBack)
{
    EXPECT_EQ(NoOfLeds, 3);
    EXPECT_EQ(NoOfLedStates, 7);
    for (unsigned int led = 0; led < 3; ++led) {
        EXPECT_STREQ(Led_objectToName(led), ledNames[led]);
        EXPECT_EQ(Led_nameToObject(ledNames[led]), led);
    }
    for (unsigned int state = 0; state < 7; ++state) {
        EXPECT_STREQ(Led_stateObjectToStateName(state), stateNames[state]);
        EXPECT_EQ(Led_stateNameToStateObject(stateNames[state]), state);
    }
}

TEST(LedNames, AreFoundAtTheBeginningOfAText)
{
    EXPECT_EQ(Led_nameToObject("greenish"), 2U);
    EXPECT_EQ(Led_nameToObject("yellow2"), 0U);
    EXPECT_EQ(Led_nameToObject("red green"), 1U);
    EXPECT_EQ(Led_stateNameToStateObject("slowly"), 4U);
    EXPECT_EQ(Led_stateNameToStateObject("steady_onf"), 1U);
    EXPECT_EQ(Led_stateNameToStateObject("steady_offon"), 0U);
}

TEST(LedNames, AreNotFoundOtherwise)
{
    for (const char* text : {"", "Yellow", "yell", "YELLOW", " red", "purple", "slow", "\xFF"}) {
        EXPECT_EQ(Led_nameToObject(text), 3U) << text;
    }
    for (const char* text : {"", "Slow", "slo", "steady", "steady_o", "standby", " fast", "green"})
    {
        EXPECT_EQ(Led_stateNameToStateObject(text), 7U) << text;
    }
}

TEST(LedNames, ReportTheCall)
{
    errno = ENOENT;
    Led_nameToObject("red");
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_nameToObject called\n"));
    Led_objectToName(2);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_objectToName(2) called\n"));
    Led_stateNameToStateObject("slow");
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_stateNameToStateObject called\n"));
    Led_stateObjectToStateName(6);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.led 6 Led_stateObjectToStateName(6) called\n"));
    EXPECT_EQ(errno, ENOENT);
    recordingtrace::setLevel("bsp.led", 5);
    Led_nameToObject("red");
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(LedNamesDeathTest, RefuseANumberOutsideTheLeds)
{
    EXPECT_DEATH(Led_objectToName(3), violation("led < NoOfLeds"));
    EXPECT_DEATH(Led_objectToName(static_cast<unsigned int>(-1)), violation("led < NoOfLeds"));
}

TEST(LedNamesDeathTest, RefuseANumberOutsideTheStates)
{
    EXPECT_DEATH(Led_stateObjectToStateName(7), violation("state < NoOfLedStates"));
    EXPECT_DEATH(Led_stateObjectToStateName(static_cast<unsigned int>(-1)),
                 violation("state < NoOfLedStates"));
}

TEST(LedNamesDeathTest, RefuseNull)
{
    EXPECT_DEATH(Led_nameToObject(nullptr), violation("name != 0"));
    EXPECT_DEATH(Led_stateNameToStateObject(nullptr), violation("name != 0"));
}

TEST(LedNamesDeathTest, EndByAbort)
{
    EXPECT_EXIT(Led_objectToName(3), KilledBySignal(SIGABRT), "");
}

TEST(LedSetStateDeathTest, RefusesNumbersOutside)
{
    EXPECT_DEATH(Led_setState(3, 0), violation("led < NoOfLeds"));
    EXPECT_DEATH(Led_setState(static_cast<unsigned int>(-1), 0), violation("led < NoOfLeds"));
    EXPECT_DEATH(Led_setState(0, 7), violation("state < NoOfLedStates"));
    EXPECT_DEATH(Led_setState(0, static_cast<unsigned int>(-1)),
                 violation("state < NoOfLedStates"));
    EXPECT_DEATH(Led_setState(3, 7), violation("led < NoOfLeds"));
}

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
