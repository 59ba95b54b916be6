#include "SimulatorTest.h"

#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr uid_t Other = 65534;

/** Root comes to boards that other users can change, or not. */
class OtherUsers : public SimulatorTest
{
protected:
    void SetUp() override
    {
        fs::create_directories(file("way/on"));
        expectQuiet({"create", "way/on/b"});
        if (::geteuid() != 0 || ::chown(file("way").c_str(), Other, Other) != 0 ||
            ::chown(file("way").c_str(), 0, 0) != 0)
        {
            GTEST_SKIP() << "only root can make what other users own";
        }
    }

    void give(const std::string& name, uid_t user = Other) const
    {
        ASSERT_EQ(::lchown(file(name).c_str(), user, user), 0);
    }
    void mode(const std::string& name, mode_t mode) const
    {
        ASSERT_EQ(::chmod(file(name).c_str(), mode), 0);
    }

    void expectRefused(const std::string& name, const std::string& board = "way/on/b") const
    {
        const std::vector<std::string> before = everything();
        expectRefusal({"restart", board, "cold"},
                      "other users can change '" + name +
                          "'; root works on such a board only with --trust-other-users");
        EXPECT_EQ(everything(), before);
        expectQuiet({"restart", "--trust-other-users", board, "warm"});
    }
};

TEST_F(OtherUsers, OwnNothingOfABoardOrTheWayToIt)
{
    for (const std::string name :
         {"way", "way/on", "way/on/b", "way/on/b/eeprom", "way/on/b/shm", "way/on/b/tmp",
          "way/on/b/top.dtcm0", "way/on/b/leds", "way/on/b/leds/red", "way/on/b/leds/red/trigger"})
    {
        give(name);
        expectRefused(name);
        give(name, 0);
    }
    expectQuiet({"restart", "way/on/b", "cold"});
}

TEST_F(OtherUsers, MayWriteNothingOfABoardOrTheWayToIt)
{
    for (const std::string name : {"way", "way/on", "way/on/b", "way/on/b/shm", "way/on/b/leds"}) {
        for (const mode_t writable : {0775U, 0757U}) {
            mode(name, writable);
            expectRefused(name);
        }
        mode(name, 0755);
    }
    mode("way/on/b/eeprom", 0666);
    expectRefused("way/on/b/eeprom");
}

TEST_F(OtherUsers, MayUseWhatIsSharedAsTmpIs)
{
    mode("way", 01777);
    write("way/on/b/shm/object", "");
    give("way/on/b/shm/object");
    fs::create_directory(file("way/on/b/tmp/folder"));
    give("way/on/b/tmp/folder");
    expectQuiet({"restart", "way/on/b", "cold"});
    mode("way/on/b", 01777);
    expectRefused("way/on/b");
}

TEST_F(OtherUsers, GetNoProgramsOrSettingsFromRoot)
{
    const std::string complaint = "other users can change 'way/on/b/leds'; root works on such a "
                                  "board only with --trust-other-users";
    give("way/on/b/leds");
    const std::vector<std::string> before = everything();
    expectRefusal({"set", "way/on/b", "RadiolinkMode", "Rl5"}, complaint);
    expectRefusal({"set", "way/on/b", "slot", "5"}, complaint);
    const testsupport::Outcome outcome = run({"run", "way/on/b", "touch", file("made")});
    EXPECT_EQ(outcome.err, "bsp-board: " + complaint + '\n');
    EXPECT_NE(outcome.status, 0);
    EXPECT_EQ(everything(), before);
    expectQuiet({"set", "--trust-other-users", "way/on/b", "RadiolinkMode", "Rl5"});
    expectQuiet({"run", "--trust-other-users", "way/on/b", "touch", file("made")});
    EXPECT_EQ(contents("made"), "");
}

TEST_F(OtherUsers, MakeNoLinksOnTheWay)
{
    mode("way", 01777);
    fs::create_directory_symlink("on", file("way/link"));
    expectQuiet({"restart", "way/link/b", "warm"});
    expectQuiet({"restart", file("way/link/b"), "warm"});
    give("way/link");
    expectRefused("way/link", "way/link/b");
    expectRefused(file("way/link"), file("way/link/b"));
}

TEST_F(OtherUsers, AreNoMatterForOrdinaryUsers)
{
    for (const char* name : {"way", "way/on"}) {
        mode(name, 0777);
    }
    EXPECT_EQ(boardToolOfOrdinaryUser({"create", "way/on/c"}).run().status, 0);
    mode("way/on/c/leds", 0777);
    EXPECT_EQ(boardToolOfOrdinaryUser({"restart", "way/on/c", "warm"}).run(),
              testsupport::answer());
}

TEST_F(OtherUsers, GetNoWriteAccessToWhatRootMakes)
{
    EXPECT_EQ(prepared(boardTool({"create", "b"}), [] { ::umask(0); }).run().status, 0);
    expectQuiet({"restart", "b", "cold"});
}

} // namespace
