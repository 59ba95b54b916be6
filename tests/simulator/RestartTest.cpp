#include "SimulatorTest.h"

namespace
{

namespace fs = std::filesystem;
using namespace testing;

/** A board with traces of use everywhere. */
class Restart : public SimulatorTest
{
protected:
    void SetUp() override
    {
        expectQuiet({"create", "b", "--code", "2100000401000100"});
        write("b/top.dtcm0", std::string(32768, 'm'));
        write("b/top.sys_ctrl0", word(77) + std::string(4092, 'r'));
        write("b/settings", "settings");
        write("b/shm/sem.DtcmDbSharedSem", "semaphore");
        fs::create_directories(file("b/tmp/some/where"));
        write("b/tmp/some/where/file", "temporary");
        fs::create_directory(file("keep"));
        write("keep/file", "kept");
        fs::create_symlink(file("keep"), file("b/tmp/link"));
        write("b/leds/red/korvanta_state", "slowdy_off\n");
        write("b/leds/red/trigger", "korvantarvanta]\n");
    }

    /** What every restart does and what none does. */
    void expectRestarted(std::uint32_t cause) const
    {
        EXPECT_EQ(contents("b/top.sys_ctrl0"), word(cause) + std::string(4092, 'r'));
        EXPECT_THAT(entries("b/shm"), IsEmpty());
        EXPECT_EQ(contents("b/leds/red/korvanta_state"), "steady_off\n");
        EXPECT_EQ(contents("b/leds/red/trigger"), "none [korvanta]\n");
        EXPECT_EQ(contents("b/settings"), "settings");
        EXPECT_EQ(contents("b/eeprom"), std::string("\x21\0\0\x04\x01\0\x01\0", 8));
        EXPECT_EQ(contents("keep/file"), "kept");
    }

    void expectKept(const std::string& word, std::uint32_t cause) const
    {
        expectQuiet({"restart", "b", word});
        expectRestarted(cause);
        EXPECT_THAT(entries("b/tmp"), IsEmpty());
        EXPECT_EQ(contents("b/top.dtcm0"), std::string(32768, 'm'));
    }

    void expectNothingDone(const std::string& complaint) const
    {
        const std::vector<std::string> before = everything();
        expectRefusal({"restart", "b", "cold"}, complaint);
        EXPECT_EQ(everything(), before);
    }
};

TEST_F(Restart, ColdLosesTheMemoryAndLeavesTheMark)
{
    expectQuiet({"restart", "b", "cold"});
    expectRestarted(0);
    EXPECT_THAT(entries("b/tmp"), ElementsAre("restart_cold"));
    const std::string memory = contents("b/top.dtcm0");
    EXPECT_EQ(memory.size(), 32768U);
    EXPECT_EQ(memory.find("mmmmmmmm"), std::string::npos);
}

TEST_F(Restart, WarmKeepsTheMemory)
{
    expectKept("warm", 1);
}

TEST_F(Restart, WatchdogKeepsTheMemory)
{
    expectKept("watchdog", 2);
}

TEST_F(Restart, EachColdOneLeavesOtherMemory)
{
    expectQuiet({"restart", "b", "cold"});
    const std::string first = contents("b/top.dtcm0");
    expectQuiet({"restart", "b", "cold"});
    EXPECT_NE(contents("b/top.dtcm0"), first);
}

TEST_F(Restart, TakesTheMarkOfAColdOneAway)
{
    for (const char* cause : {"warm", "watchdog"}) {
        expectQuiet({"restart", "b", "cold"});
        expectQuiet({"restart", "b", cause});
        EXPECT_THAT(entries("b/tmp"), IsEmpty());
    }
}

TEST_F(Restart, MakesWhatIsMissing)
{
    for (const char* name : {"b/shm", "b/tmp", "b/leds"}) {
        fs::remove_all(file(name));
    }
    expectQuiet({"restart", "b", "warm"});
    EXPECT_THAT(entries("b/shm"), IsEmpty());
    EXPECT_THAT(entries("b/tmp"), IsEmpty());
    for (const std::string led : {"b/leds/yellow", "b/leds/red", "b/leds/green"}) {
        EXPECT_EQ(contents(led + "/korvanta_state"), "steady_off\n");
        EXPECT_EQ(contents(led + "/trigger"), "none [korvanta]\n");
    }
}

TEST_F(Restart, WantsACauseThatThereIs)
{
    expectMisuse({"restart", "b"}, "CAUSE is required");
    for (const std::string cause : {"hot", "Cold", "0", "unknown", ""}) {
        expectMisuse({"restart", "b", cause},
                     "'" + cause + "' is no kind of restart; it can be cold, warm or watchdog");
    }
    EXPECT_THAT(everything(), Contains("b/shm/sem.DtcmDbSharedSem=semaphore"));
}

TEST_F(Restart, WantsABoard)
{
    write("file", "");
    expectRefusal({"restart", "no", "cold"}, "no board 'no': No such file or directory");
    expectRefusal({"restart", "file", "cold"}, "no board 'file': Not a directory");
    fs::create_directory_symlink("b", file("link"));
    for (const std::string name : {"link", "link/"}) {
        expectRefusal({"restart", name, "cold"}, "no board 'link': it is a symbolic link");
    }
    EXPECT_THAT(everything(), Contains("b/shm/sem.DtcmDbSharedSem=semaphore"));
}

TEST_F(Restart, TouchesNoDirectoryThatIsNoBoard)
{
    fs::create_directories(file("home/tmp"));
    write("home/tmp/mine", "precious");
    expectRefusal(
        {"restart", "home", "cold"},
        "only a simulated board can be restarted: 'home/top.dtcm0' is no file of 32768 bytes");
    EXPECT_EQ(contents("home/tmp/mine"), "precious");
}

TEST_F(Restart, LeavesARealBoardAlone)
{
    write("memory", std::string(32768, 'M'));
    fs::remove(file("b/top.dtcm0"));
    fs::create_symlink("../memory", file("b/top.dtcm0"));
    expectNothingDone(
        "only a simulated board can be restarted: 'b/top.dtcm0' is no file of 32768 bytes");
}

TEST_F(Restart, WantsWholeRegisters)
{
    write("b/top.sys_ctrl0", word(0));
    expectNothingDone(
        "only a simulated board can be restarted: 'b/top.sys_ctrl0' is no file of 4096 bytes");
}

TEST_F(Restart, FollowsNoLinkOutOfTheBoard)
{
    for (const std::string name : {"b/shm", "b/tmp", "b/leds", "b/leds/red"}) {
        fs::rename(file(name), file("real"));
        fs::create_directory_symlink(file("keep"), file(name));
        expectNothingDone("only a simulated board can be restarted: '" + name +
                          "' is no directory");
        fs::remove(file(name));
        fs::rename(file("real"), file(name));
    }
}

TEST_F(Restart, FollowsNoLinkBelowTheLeds)
{
    write("real", "precious");
    for (const std::string name : {"b/leds/red/trigger", "b/leds/green/korvanta_state"}) {
        const std::string before = contents(name);
        fs::remove(file(name));
        fs::create_symlink(file("real"), file(name));
        expectNothingDone("only a simulated board can be restarted: '" + name + "' is no file");
        EXPECT_EQ(contents("real"), "precious");
        fs::remove(file(name));
        write(name, before);
    }
}

} // namespace
