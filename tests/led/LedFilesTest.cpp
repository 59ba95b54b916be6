#include "Files.h"
#include "Led.h"
#include "LedTest.h"
#include "RecordingTrace.h"

#include <cerrno>

#include <unistd.h>

namespace
{

using recordingtrace::takeLines;
using namespace testing;
using namespace testsupport;

/** The LED directories of a board of the test case's own. */
class LedFiles : public Test
{
protected:
    LedFiles()
    {
        for (const char* name : ledNames) {
            std::filesystem::create_directories(directory(name));
            writeFile(directory(name) + "/trigger", "");
        }
    }

    static std::string directory(const std::string& name) { return "/sys/class/leds/" + name; }
    static std::string stateFile(const std::string& name)
    {
        return directory(name) + "/korvanta_state";
    }
    static std::string triggerFile(const std::string& name) { return directory(name) + "/trigger"; }
};

TEST_F(LedFiles, GetExactlyTheNameOfTheState)
{
    for (unsigned int led = 0; led < 3; ++led) {
        for (unsigned int state = 0; state < 7; ++state) {
            writeFile(stateFile(ledNames[led]), "");
            EXPECT_EQ(Led_setState(led, state), 0);
            EXPECT_EQ(readFile(stateFile(ledNames[led])), stateNames[state]);
            EXPECT_EQ(readFile(triggerFile(ledNames[led])), "");
        }
    }
    EXPECT_THAT(takeLines(3), IsEmpty());
}

TEST_F(LedFiles, OfOtherLedsAreLeftAlone)
{
    for (const char* name : ledNames) {
        writeFile(stateFile(name), "");
    }
    EXPECT_EQ(Led_setState(1, 4), 0);
    EXPECT_EQ(readFile(stateFile("yellow")), "");
    EXPECT_EQ(readFile(stateFile("red")), "slow");
    EXPECT_EQ(readFile(stateFile("green")), "");
}

TEST_F(LedFiles, AreNotTruncated)
{
    writeFile(stateFile("green"), "interrupting");
    EXPECT_EQ(Led_setState(2, 4), 0);
    EXPECT_EQ(readFile(stateFile("green")), "slowrrupting");
}

TEST_F(LedFiles, AreNotNeededToHaveATriggerOnceTheStateIsThere)
{
    writeFile(stateFile("yellow"), "");
    std::filesystem::remove(triggerFile("yellow"));
    EXPECT_EQ(Led_setState(0, 6), 0);
    EXPECT_EQ(readFile(stateFile("yellow")), "interrupting");
}

TEST_F(LedFiles, WithoutStateGetTheTriggerButAreNotCreated)
{
    errno = 0;
    EXPECT_EQ(Led_setState(2, 4), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(readFile(triggerFile("green")), "korvanta");
    EXPECT_FALSE(std::filesystem::exists(stateFile("green")));
    EXPECT_THAT(takeLines(1),
                ElementsAre("bsp.led 1 Led_open: open failed. errno = No such file or directory. "
                            "ledFilename = /sys/class/leds/green/korvanta_state.\n"));
}

TEST_F(LedFiles, OfTheStateThatAppearWithTheTriggerAreWritten)
{
    // As the kernel does: the attribute is there once the trigger is written.
    recordingtrace::setObserver([](const recordingtrace::Message& message) {
        if (message.text.rfind("Led_close(", 0) == 0 &&
            readFile(triggerFile("green")) == "korvanta") {
            recordingtrace::setObserver(nullptr);
            writeFile(stateFile("green"), "");
        }
    });
    EXPECT_EQ(Led_setState(2, 4), 0);
    EXPECT_EQ(readFile(triggerFile("green")), "korvanta");
    EXPECT_EQ(readFile(stateFile("green")), "slow");
    EXPECT_THAT(takeLines(5), IsEmpty());
}

TEST_F(LedFiles, WithoutStateAndTriggerAreAFailure)
{
    std::filesystem::remove(triggerFile("red"));
    errno = 0;
    EXPECT_EQ(Led_setState(1, 0), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(std::filesystem::is_empty(directory("red")));
    EXPECT_THAT(
        takeLines(),
        ElementsAre("bsp.led 6 Led_setState(1,0) called\n", "bsp.led 6 Led_open(1) called\n",
                    "bsp.led 6 Led_enableTrigger(1) called\n",
                    "bsp.led 1 Led_enableTrigger: open failed. errno = No such file or directory. "
                    "triggerFilename = /sys/class/leds/red/trigger.\n",
                    "bsp.led 1 Led_open: Failed to enable Korvanta LED trigger.\n"));
}

TEST_F(LedFiles, ThatAreDirectoriesAreAFailure)
{
    std::filesystem::create_directory(stateFile("red"));
    errno = 0;
    EXPECT_EQ(Led_setState(1, 0), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(readFile(triggerFile("red")), "korvanta");
    EXPECT_THAT(takeLines(1),
                ElementsAre("bsp.led 1 Led_open: open failed. errno = Is a directory. "
                            "ledFilename = /sys/class/leds/red/korvanta_state.\n"));
}

TEST_F(LedFiles, LeaveNoDescriptorOpen)
{
    const auto before = openDescriptors();
    EXPECT_EQ(Led_setState(0, 0), -1);
    writeFile(stateFile("yellow"), "");
    EXPECT_EQ(Led_setState(0, 0), 0);
    EXPECT_EQ(openDescriptors(), before);
    takeLines();
}

TEST_F(LedFiles, AreWrittenWithStandardInputClosed)
{
    writeFile(stateFile("green"), "");
    ::close(STDIN_FILENO);
    EXPECT_EQ(Led_setState(2, 5), 0);
    EXPECT_EQ(readFile(stateFile("green")), "fast");
    EXPECT_THAT(takeLines(5), IsEmpty());
}

} // namespace
