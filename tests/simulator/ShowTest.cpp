#include "SimulatorTest.h"

#include "NxuConfig.h"

#include <cstdlib>

#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;
using testsupport::Outcome;

class Show : public SimulatorTest
{
protected:
    void SetUp() override
    {
        expectQuiet({"create", "b", "--code", "5401020802040100"});
        write("b/top.dtcm0", std::string(32768, '\0'));
    }

    std::string show(Words words = {"show", "b"}) const
    {
        return testsupport::outputOf(boardTool(std::move(words)));
    }

    /** Puts an object into the warm area; blocks are counted from 1. */
    void putBlock(std::size_t number, std::string name, std::string data) const
    {
        name.resize(16);
        data.resize(1008);
        std::string area = contents("b/top.dtcm0");
        area.replace((number - 1) * 1024, 1024, name + data);
        write("b/top.dtcm0", area);
    }

    void set(const std::string& key, const std::string& value) const
    {
        ::setenv("BSP_BOARD_DIR", file("b").c_str(), 1);
        EXPECT_TRUE(os::bsp::NxuConfig().set(key, value));
    }
};

TEST_F(Show, ShowsAFreshBoard)
{
    EXPECT_EQ(show(), "Hardware code   5401020802040100\n"
                      "Variant         16\n"
                      "Product         KT4851_4\n"
                      "Revision        0 (R1_P2)\n"
                      "Platform        Nxu5\n"
                      "Reset cause     0 (Cold)\n"
                      "Cold marker     present\n"
                      "Store           empty\n"
                      "LED yellow      steady_off\n"
                      "LED red         steady_off\n"
                      "LED green       steady_off\n"
                      "Warm area       0 of 32 blocks used\n");
}

TEST_F(Show, ShowsABoardInUse)
{
    write("b/eeprom", std::string("\x41\0\x01\x03\x01\x02\x05\0", 8));
    expectQuiet({"restart", "b", "watchdog"});
    set("RadiolinkMode", "Rl5");
    set("Odd\n", "back\\slash\xFF");
    // Written over longer texts, as a program on the board does it.
    write("b/leds/yellow/korvanta_state", "slowdy_off\n");
    write("b/leds/red/korvanta_state", "steady_onf\n");
    write("b/leds/green/korvanta_state", "interrupting");
    putBlock(1, "first", "");
    putBlock(2, "SLOT", word(5));
    putBlock(32, "last", "");
    EXPECT_EQ(show(), "Hardware code   4100010301020500\n"
                      "Variant         2\n"
                      "Product         NXU4A\n"
                      "Revision        4 (R2_P1)\n"
                      "Platform        Nxu4\n"
                      "Reset cause     2 (Watchdog)\n"
                      "Cold marker     absent\n"
                      "Store           Odd\\x0a = back\\\\slash\\xff\n"
                      "                RadiolinkMode = Rl5\n"
                      "LED yellow      slow\n"
                      "LED red         steady_on\n"
                      "LED green       interrupting\n"
                      "Warm area       3 of 32 blocks used\n"
                      "Block 1         first\n"
                      "Block 2         SLOT\n"
                      "Block 32        last\n"
                      "Slot id         5\n");
}

TEST_F(Show, ShowsASlotIdThatIsNotSet)
{
    putBlock(1, "SLOT", word(0xFFFFFFFF));
    EXPECT_THAT(show(), EndsWith("\nSlot id         -1\n"));
}

TEST_F(Show, FindsTheSlotIdWhereProgramsDo)
{
    putBlock(2, "SLOT", word(5));
    EXPECT_THAT(show(), Not(HasSubstr("Slot id")));
    putBlock(1, "SLOTS", word(6));
    EXPECT_THAT(show(), EndsWith("\nSlot id         5\n"));
}

TEST_F(Show, ShowsEveryStateOfAnLed)
{
    for (const std::string state :
         {"steady_off", "steady_on", "standby_hot", "standby_cold", "slow", "fast", "interrupting"})
    {
        write("b/leds/red/korvanta_state", state);
        EXPECT_THAT(show(), HasSubstr("\nLED red         " + state + '\n'));
    }
    write("b/leds/red/korvanta_state", "dark\n");
    EXPECT_THAT(show(), HasSubstr("\nLED red         unknown state 'dark\\x0a'\n"));
}

TEST_F(Show, ShowsEveryResetCause)
{
    const std::vector<std::pair<std::uint32_t, std::string>> causes{
        {0, "0 (Cold)"},    {1, "1 (Warm)"},      {2, "2 (Watchdog)"},
        {3, "3 (Unknown)"}, {4, "4 (EndOfList)"}, {0xFFFFFFFF, "4294967295 (EndOfList)"},
    };
    for (const auto& [cause, text] : causes) {
        write("b/top.sys_ctrl0", word(cause) + std::string(4092, '\0'));
        EXPECT_THAT(show(), HasSubstr("\nReset cause     " + text + '\n'));
    }
}

TEST_F(Show, ShowsAnUnknownCode)
{
    expectQuiet({"create", "c", "--code", "00112233445566ff"});
    EXPECT_THAT(show({"show", "c"}), StartsWith("Hardware code   00112233445566ff\n"
                                                "Variant         0 (the code is not known)\n"
                                                "Product         NXU4A\n"
                                                "Revision        0 (R1_P2)\n"
                                                "Platform        EndOfList\n"));
}

TEST_F(Show, BoundsAndEscapesNames)
{
    putBlock(1, "0123456789abcdef", "data");
    putBlock(2, "a\x01\\\x7F\x80 ", "");
    EXPECT_THAT(show(), EndsWith("Warm area       2 of 32 blocks used\n"
                                 "Block 1         0123456789abcdef\n"
                                 "Block 2         a\\x01\\\\\\x7f\\x80 \n"));
}

TEST_F(Show, KnowsMemoryThatNoProgramHasClearedYet)
{
    for (const char* product : {"NXU4A", "KT4766", "KT4851_4"}) {
        expectQuiet({"create", product, "--product", product});
        EXPECT_THAT(show({"show", product, "--dump"}),
                    EndsWith("\nWarm area       not cleared yet\n"));
        // Programs take what is there then, except on boards that forget it anyway.
        expectQuiet({"restart", product, "warm"});
        EXPECT_EQ(show({"show", product}).find("not cleared yet") != std::string::npos,
                  product == std::string("KT4766"));
    }
}

TEST_F(Show, ShowsMemoryThatAProgramUses)
{
    expectQuiet({"restart", "b", "cold"});
    write("b/shm/sem.DtcmDbSharedSem", "");
    for (const char byte : show({"show", "b", "--dump"})) {
        EXPECT_TRUE(byte == '\n' || (byte >= ' ' && byte <= '~'));
    }
    EXPECT_THAT(show(), HasSubstr(" of 32 blocks used\nBlock "));
}

TEST_F(Show, ShowsDamagedMemory)
{
    expectQuiet({"restart", "b", "cold"});
    putBlock(7, "SLOT", std::string(1008, 'd'));
    EXPECT_THAT(show(), HasSubstr(" of 32 blocks used\nBlock "));
    EXPECT_THAT(show(), HasSubstr("\nBlock 7         SLOT\n"));
    write("b/top.dtcm0", std::string(32768, '\0'));
    putBlock(1, "\x01\x02", "");
    EXPECT_THAT(show(), EndsWith("Warm area       1 of 32 blocks used\n"
                                 "Block 1         \\x01\\x02\n"));
    putBlock(2, std::string(16, '\x03'), "");
    EXPECT_THAT(show(), HasSubstr("\nWarm area       2 of 32 blocks used\n"));
}

TEST_F(Show, DumpsTheUsedBlocks)
{
    putBlock(1, "zero", "\x01\x02");
    std::string data(1008, '\xA5');
    data.replace(0, 5, "Hello");
    data.replace(1000, 8, "Goodbye.");
    putBlock(2, "greeting", data);
    EXPECT_THAT(
        show({"show", "--dump", "b"}),
        EndsWith(
            "Warm area       2 of 32 blocks used\n"
            "Block 1         zero\n"
            "00000000  7a 65 72 6f 00 00 00 00 00 00 00 00 00 00 00 00  |zero............|\n"
            "00000010  01 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |................|\n"
            "00000020  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  |................|\n"
            "*\n"
            "Block 2         greeting\n"
            "00000400  67 72 65 65 74 69 6e 67 00 00 00 00 00 00 00 00  |greeting........|\n"
            "00000410  48 65 6c 6c 6f a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5  |Hello...........|\n"
            "00000420  a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5 a5  |................|\n"
            "*\n"
            "000007f0  a5 a5 a5 a5 a5 a5 a5 a5 47 6f 6f 64 62 79 65 2e  |........Goodbye.|\n"));
}

TEST_F(Show, NamesWhatIsMissing)
{
    fs::remove_all(file("b"));
    fs::create_directory(file("b"));
    fs::create_symlink("nowhere", file("b/eeprom"));
    const std::string missing = ": No such file or directory\n";
    EXPECT_EQ(show(), "Hardware code   cannot read 'b/eeprom'" + missing +
                          "Variant         14 (the code cannot be read)\n"
                          "Product         KT4851_3\n"
                          "Revision        0 (R1_P2)\n"
                          "Platform        Nxu5\n"
                          "Reset cause     cannot read 'b/top.sys_ctrl0'" +
                          missing +
                          "Cold marker     absent\n"
                          "Store           empty\n"
                          "LED yellow      cannot read 'b/leds/yellow/korvanta_state'" +
                          missing + "LED red         cannot read 'b/leds/red/korvanta_state'" +
                          missing + "LED green       cannot read 'b/leds/green/korvanta_state'" +
                          missing + "Warm area       cannot read 'b/top.dtcm0'" + missing);
}

TEST_F(Show, NamesWhatIsBroken)
{
    write("b/eeprom", "1234567");
    write("b/top.sys_ctrl0", "123");
    write("b/top.dtcm0", std::string(32767, 'x'));
    write("b/settings", "no setting");
    fs::remove(file("b/leds/red/korvanta_state"));
    fs::create_directory(file("b/leds/red/korvanta_state"));
    EXPECT_EQ(show(),
              "Hardware code   'b/eeprom' has 7 bytes instead of 8\n"
              "Variant         14 (the code cannot be read)\n"
              "Product         KT4851_3\n"
              "Revision        0 (R1_P2)\n"
              "Platform        Nxu5\n"
              "Reset cause     'b/top.sys_ctrl0' has 3 bytes instead of 4\n"
              "Cold marker     present\n"
              "Store           cannot read 'b/settings': line 1: not of the form key=value\n"
              "LED yellow      steady_off\n"
              "LED red         cannot read 'b/leds/red/korvanta_state': Is a directory\n"
              "LED green       steady_off\n"
              "Warm area       'b/top.dtcm0' has 32767 bytes instead of 32768\n");
}

TEST_F(Show, DoesNotWaitForWhatIsNoFile)
{
    fs::remove(file("b/eeprom"));
    ASSERT_EQ(::mkfifo(file("b/eeprom").c_str(), 0600), 0);
    EXPECT_THAT(show(), StartsWith("Hardware code   'b/eeprom' has 0 bytes instead of 8\n"));
}

TEST_F(Show, NamesAStoreOfAnEarlierVersion)
{
    write("b/config.mdb", "database");
    EXPECT_THAT(show(), HasSubstr("\nStore           cannot read 'b/settings': there is a "
                                  "b/config.mdb of an earlier version; write its values as "
                                  "key=value lines into b/settings and remove it\n"));
}

TEST_F(Show, FollowsLinksToHardware)
{
    fs::rename(file("b/eeprom"), file("eeprom"));
    fs::create_symlink("../eeprom", file("b/eeprom"));
    for (const std::string name : {"b/top.dtcm0", "b/top.sys_ctrl0"}) {
        fs::remove(file(name));
        fs::create_symlink("/dev/zero", file(name));
    }
    const std::string text = show();
    EXPECT_THAT(text, StartsWith("Hardware code   5401020802040100\n"));
    EXPECT_THAT(text, HasSubstr("\nReset cause     0 (Cold)\n"));
    EXPECT_THAT(text, EndsWith("\nWarm area       0 of 32 blocks used\n"));
}

TEST_F(Show, ChangesNothing)
{
    set("RadiolinkMode", "Rl5");
    putBlock(1, "SLOT", word(5));
    const std::vector<std::string> before = everything();
    struct stat store = {};
    ASSERT_EQ(::stat(file("b/settings").c_str(), &store), 0);
    show({"show", "b", "--dump"});
    struct stat after = {};
    ASSERT_EQ(::stat(file("b/settings").c_str(), &after), 0);
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(after.st_mtim.tv_sec, store.st_mtim.tv_sec);
    EXPECT_EQ(after.st_mtim.tv_nsec, store.st_mtim.tv_nsec);
}

TEST_F(Show, WantsABoard)
{
    fs::create_directories(file("home/tmp"));
    fs::create_directory(file("home/leds"));
    expectRefusal({"show", "home"}, "no board 'home': there is nothing of a board in it");
    expectRefusal({"show", "no"}, "no board 'no': No such file or directory");
    expectRefusal({"show", "b/eeprom"}, "no board 'b/eeprom': Not a directory");
}

TEST_F(Show, SaysThatABoardMayNotBeRead)
{
    for (const auto mode : {fs::perms::none, fs::perms::owner_read | fs::perms::others_read}) {
        fs::permissions(file("b"), mode);
        const Outcome outcome = boardToolOfOrdinaryUser({"show", "b"}).run();
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, AnyOf("bsp-board: cannot read 'b': Permission denied\n",
                                       "bsp-board: cannot read 'b/eeprom': Permission denied\n"));
        EXPECT_EQ(outcome.status, 1);
    }
    fs::permissions(file("b"), fs::perms::owner_all);
}

TEST_F(Show, ShowsABoardOfWhichGitKeptTheFilesOnly)
{
    const std::string before = show();
    fs::remove(file("b/shm"));
    EXPECT_EQ(show(), before);
}

} // namespace
