#include "DiagTest.h"

#include <sys/resource.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

const std::string Defaults = ". Follows: queries answer for hardware variant 14, whatever the "
                             "board is (KT4851_3, platform Nxu5). Cure: ";
const std::string PrivateStore = ". Follows: every program works on a private, empty store: "
                                 "getSlotId answers -1, and what is set is lost. Cure: ";

class Check : public DiagTest
{};

class CheckOfOrdinaryUser : public DiagTest
{
protected:
    void SetUp() override
    {
        DiagTest::SetUp();
        if (const std::string reason = noOtherUser(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }
};

TEST_F(Check, FindsNothingOnAHealthyBoard)
{
    expectFindings({});
    if (const std::string reason = unseenProcesses(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    EXPECT_EQ(diag({"check"}).run(), testsupport::answer("nothing found\n"));
}

TEST_F(CheckOfOrdinaryUser, SaysWhatItCannotSeeWithoutPrivilege)
{
    for (const char* const name : {"eeprom", "top.dtcm0", "top.sys_ctrl0"}) {
        fs::permissions(boardFile(name), fs::perms(0666));
    }
    fs::permissions(board(), fs::perms(0777));
    for (const char* const led : {"yellow", "red", "green"}) {
        fs::permissions(std::string("/sys/class/leds/") + led + "/korvanta_state", fs::perms(0666));
    }
    const testsupport::Outcome outcome = diagOfOrdinaryUser({"check"}).run();
    EXPECT_THAT(outcome.out, MatchesRegex("not looked at: what [0-9]+ processes of other users "
                                          "have mapped: root may look\nnothing found\n"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Check, NamesAnEepromThatCannotBeRead)
{
    fs::remove(boardFile("eeprom"));
    expectFindings({"eeprom-unreadable: the EEPROM cannot be read. Evidence: e2prom_data_read(5, "
                    "1) answered 2 (BOARD/eeprom)" +
                    Defaults +
                    "see that the EEPROM is there, that its driver is loaded, and that this user "
                    "may read it"});
}

TEST_F(Check, SaysInOneLineWhatIsWrongInAnyPlace)
{
    testsupport::Program program = diag({"check"});
    program.environment["BSP_BOARD_DIR"] = file("two\nlines");
    const Words lines = findings(program);
    EXPECT_THAT(namesIn(lines),
                ElementsAre("eeprom-unreadable", "dtcm-missing", "settings-not-writable"));
    for (const std::string& line : lines) {
        EXPECT_THAT(line, HasSubstr("two\\x0alines"));
    }
}

TEST_F(Check, NamesAShortEeprom)
{
    write("eeprom", "abc");
    expectFindings(
        {"eeprom-short: the EEPROM has no whole hardware code. Evidence: BOARD/eeprom has 3 of 8 "
         "bytes" +
         Defaults +
         "write the eight bytes of the hardware code; bsp-board variants lists those known"});
}

TEST_F(Check, NamesACodeOfNoVariant)
{
    write("eeprom", std::string("\x41\0\0\0\1\0\x77\0", 8));
    expectFindings({"eeprom-unknown-code: no hardware variant has the board's code. Evidence: the "
                    "code is 4100000001007700. Follows: product and revision are those of variant "
                    "0; other queries go by the words of the code. Cure: correct the EEPROM, or "
                    "install a version that knows the board"});
}

TEST_F(Check, NamesWordsThatQueriesDoNotKnow)
{
    write("eeprom", std::string("\x41\7\7\x9\1\7\1\0", 8));
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("eeprom-unknown-code", "eeprom-unknown-word"));
    EXPECT_EQ(lines.at(1),
              "eeprom-unknown-word: words of the hardware code have no meaning. Evidence: the code "
              "is 4107070901070100; without meaning: 1 (platform), 2 (control backplane), 3 "
              "(traffic FPGA), 5 (DSP). Follows: the queries of these words answer EndOfList or a "
              "default. Cure: correct the EEPROM, or install a version that knows the board");
}

TEST_F(Check, NamesADtcmThatIsMissing)
{
    fs::remove(boardFile("top.dtcm0"));
    expectFindings({"dtcm-missing: the tightly coupled memory cannot be opened. Evidence: "
                    "BOARD/top.dtcm0: No such file or directory" +
                    PrivateStore + "see that the device is there and its driver is loaded"});
}

TEST_F(Check, NamesAShortDtcm)
{
    fs::resize_file(boardFile("top.dtcm0"), 32767);
    expectFindings({"dtcm-short: the tightly coupled memory is too short. Evidence: "
                    "BOARD/top.dtcm0 has 32767 of 32768 bytes" +
                    PrivateStore + "give the device 32768 bytes"});
}

TEST_F(CheckOfOrdinaryUser, NamesADtcmThatThisUserMayNotWrite)
{
    fs::permissions(boardFile("top.dtcm0"), fs::perms(0644));
    EXPECT_THAT(findings(diagOfOrdinaryUser({"check"})),
                Contains("dtcm-not-writable: this user may not write the tightly coupled memory. "
                         "Evidence: BOARD/top.dtcm0: Permission denied" +
                         PrivateStore + "give this user the right to read and write it"));
}

TEST_F(Check, NamesADtcmThatCannotBeMapped)
{
    fs::remove(boardFile("top.dtcm0"));
    fs::create_symlink("/dev/null", boardFile("top.dtcm0"));
    EXPECT_THAT(names(), ElementsAre("dtcm-not-mappable"));
}

TEST_F(CheckOfOrdinaryUser, NamesALimitOfLockedMemory)
{
    testsupport::Program program = diagOfOrdinaryUser({"check"});
    const auto becomeUser = program.prepare;
    program.prepare = [becomeUser] {
        const struct rlimit limit = {20480, 20480};
        ::setrlimit(RLIMIT_MEMLOCK, &limit);
        becomeUser();
    };
    EXPECT_THAT(
        findings(program),
        Contains(AllOf(StartsWith("dtcm-not-lockable: this process may not lock as much memory as "
                                  "the store needs. Evidence: the limit is 20480 of "),
                       HasSubstr(" bytes. Follows: programs of this user work on a private store, "
                                 "or crash when they use a mutex of a block. Cure: raise the limit "
                                 "of locked memory (ulimit -l, LimitMEMLOCK=)"))));
}

TEST_F(Check, NamesMissingRegisters)
{
    fs::remove(boardFile("top.sys_ctrl0"));
    expectFindings(
        {"registers-missing: the cause of the last restart cannot be read. Evidence: no registers "
         "at BOARD/top.sys_ctrl0. Follows: the reset type is Unknown: the warm area is never "
         "cleared. Cure: see that the device is there and this user may read it"});
    // Another platform does without.
    write("eeprom", std::string("\x51\1\1\3\1\2\1\0", 8));
    expectFindings({});
}

TEST_F(Check, NamesACauseThatIsNone)
{
    setResetCause(4);
    expectFindings({"reset-cause-none: the register holds no cause of a restart. Evidence: the "
                    "word is 4. Follows: the reset type is none: the warm area is never cleared. "
                    "Cure: see that the boot loader writes 0 (cold), 1 (warm) or 2 (watchdog)"});
    for (const std::uint32_t cause : {0U, 1U, 2U, 3U}) {
        setResetCause(cause);
        EXPECT_THAT(findings(), IsEmpty()) << cause;
    }
}

TEST_F(Check, NamesAMarkThatContradictsTheCause)
{
    testsupport::writeFile("/tmp/restart_cold", "");
    expectFindings({"cold-marker-stale: the mark of a cold restart is there after a restart that "
                    "was not cold. Evidence: /tmp/restart_cold, cause of the restart Warm. "
                    "Follows: none here: this product does not go by the mark. Cure: see that "
                    "start-up scripts make the mark after cold restarts only; remove it"});
    write("eeprom", std::string("\x54\1\2\x8\2\4\1\0", 8));
    EXPECT_THAT(findings().at(0),
                HasSubstr("Follows: the restart counts as cold: the warm area is cleared. "));
    setResetCause(0);
    expectFindings({});
    fs::remove("/tmp/restart_cold");
    expectFindings(
        {"cold-marker-missing: the mark of a cold restart is missing after one. Evidence: no "
         "/tmp/restart_cold, cause of the restart Cold. Follows: the restart counts as warm: "
         "programs take what power-up left in the warm area for objects. Cure: see that start-up "
         "scripts make the mark before the first program starts"});
}

TEST_F(Check, NamesObjectsThatNoSearchReaches)
{
    putBlock(1, "FIRST");
    putBlock(3, "THIRD");
    putBlock(4, "0123456789abcdef");
    expectFindings({"table-name-open: names in the warm area do not end. Evidence: "
                    "0123456789abcdef (block 4). Follows: no program finds the objects: names have "
                    "at most 15 characters. Cure: restart the board cold, which clears the area",
                    "table-unreachable: objects in the warm area lie behind a free block. "
                    "Evidence: block 2 is free; behind it: THIRD (block 3), 0123456789abcdef "
                    "(block 4). Follows: no program finds these objects; who asks for one makes it "
                    "anew. Cure: restart the board cold, which clears the area"});
    setResetCause(0); // the first program will clear it
    expectFindings({});
}

TEST_F(Check, NamesSettingsThatAreDamaged)
{
    write("settings", "RadiolinkMode: Rl5\n");
    expectFindings(
        {"settings-damaged: the settings cannot be read. Evidence: cannot read the configuration "
         "store BOARD/settings: line 1: not of the form key=value. Follows: getRadiolinkMode, "
         "getTrafClientMode and, on some boards, getTrafFpgaType end with SIGABRT. Cure: correct "
         "or remove what the reason names"});
}

TEST_F(Check, NamesSettingsOfAnEarlierVersion)
{
    write("config.mdb", "");
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("settings-former-format"));
    EXPECT_THAT(lines.at(0), HasSubstr("there is a BOARD/config.mdb of an earlier version"));
}

TEST_F(Check, NamesSettingsThatAreNoModes)
{
    write("settings", "RadiolinkMode=Rl6\nFpgaVariant=ThreeTdm\n");
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("settings-no-mode", "settings-no-mode"));
    EXPECT_THAT(lines.at(0), HasSubstr("Evidence: FpgaVariant = ThreeTdm. Follows: "));
    EXPECT_THAT(lines.at(1), HasSubstr("Evidence: RadiolinkMode = Rl6. Follows: "));
    write("settings", "RadiolinkMode=Rl4\nFpgaVariant=OneTdmRleEqpNoMlhc\n");
    expectFindings({});
}

TEST_F(CheckOfOrdinaryUser, NamesSettingsThatThisUserMayNotChange)
{
    EXPECT_THAT(findings(diagOfOrdinaryUser({"check"})),
                Contains("settings-not-writable: this user may not change the settings. Evidence: "
                         "BOARD: Permission denied. Follows: setRadiolinkMode and "
                         "clearRadiolinkMode change nothing, and do not say so. Cure: give this "
                         "user the right to write the file and its directory"));
}

TEST_F(CheckOfOrdinaryUser, NamesLedsThatCannotBeSet)
{
    fs::remove_all("/sys/class/leds/yellow");
    testsupport::writeFile("/sys/class/leds/red/trigger", "[none] timer\n");
    fs::remove("/sys/class/leds/red/korvanta_state");
    expectFindings(
        {"led-missing: an LED is missing. Evidence: no /sys/class/leds/yellow. Follows: setState "
         "yellow answers -1. Cure: see that the LED's driver is loaded and calls it yellow",
         "led-no-trigger: an LED does not know the trigger korvanta. Evidence: "
         "/sys/class/leds/red/trigger: [none] timer. Follows: setState red answers -1: the LED "
         "stays dark. Cure: load the driver that offers the trigger korvanta"});
    EXPECT_THAT(findings(diagOfOrdinaryUser({"check"})),
                Contains("led-not-writable: this user may not set an LED. Evidence: "
                         "/sys/class/leds/green/korvanta_state. Follows: setState green answers "
                         "-1. Cure: give this user the right to write it"));
    // The trigger can be chosen.
    testsupport::writeFile("/sys/class/leds/red/trigger", "[none] timer korvanta\n");
    EXPECT_THAT(names(), ElementsAre("led-missing"));
}

TEST_F(Check, RefusesWordsThatMakeNoSense)
{
    EXPECT_EQ(diag({"check", "--nosuch"}).run(),
              testsupport::refusal(
                  "bsp-diag: unknown option '--nosuch'\nTry 'bsp-diag check --help'.\n", 2));
}

} // namespace
