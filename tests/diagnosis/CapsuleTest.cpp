#include "DiagTest.h"
#include "Patterns.h"

#include <csignal>

#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

class Capsule : public DiagTest
{
protected:
    std::string capsule() const { return file("capsule"); }

    std::string capture() const
    {
        return normal(testsupport::outputOf(diag({"capture", capsule()})));
    }

    /** What it says when it makes a board "copy" of a capsule. */
    std::string create(const std::string& path) const
    {
        return normal(
            testsupport::outputOf(tool("bsp-board", {"create", file("copy"), "--capsule", path})));
    }

    /** What a program says on that board. */
    std::string ask(const std::string& program, Words words) const
    {
        words.insert(words.begin(), {"run", file("copy"), "--", testsupport::tool(program).path});
        return tool("bsp-board", std::move(words)).run().out;
    }

    /** What is on a board that programs can ask, its directory aside. */
    std::string shown(const std::string& name) const
    {
        const std::string text = tool("bsp-board", {"show", "--json", file(name)}).run().out;
        return testsupport::replaceMatches(text, file(name), "BOARD");
    }

    /** A document's answers of the layer. */
    static std::string answersIn(const std::string& document)
    {
        const std::size_t begin = document.find("\n  \"board\": {\n");
        const std::size_t end = document.find("\n  }", begin);
        EXPECT_NE(end, std::string::npos) << document;
        return document.substr(begin, end - begin);
    }

    /** The board as bsp-board has it: with the shared memory and the LEDs of this case. */
    void completeBoard() const
    {
        fs::copy("/dev/shm", boardFile("shm"), fs::copy_options::recursive);
        fs::create_directory(boardFile("tmp"));
        fs::copy("/sys/class/leds", boardFile("leds"), fs::copy_options::recursive);
    }
};

TEST_F(Capsule, ListsWhatWentIntoIt)
{
    write("settings", "RadiolinkMode=Rl5\n");
    const StoreUser user(board(), {"slot", "5"});
    const std::string bits = std::to_string(sizeof(void*) * 8);
    const std::string listed = "versions: bsp-diag/1, " BSP_TEST_VERSION ", " + bits +
                               " bits\n"
                               "time: TIME\n"
                               "EEPROM: 8 bytes\n"
                               "warm area: 32768 bytes, under its lock\n"
                               "registers: the cause of the last restart\n"
                               "settings: 18 bytes\n"
                               "LED yellow: its state and triggers\n"
                               "LED red: its state and triggers\n"
                               "LED green: its state and triggers\n"
                               "cold marker: whether it is there\n"
                               "shared memory: sem.DtcmDbSharedSem, its size, mode and user\n"
                               "shared memory: DtcmSync, its size, mode and user\n"
                               "semaphore: its value\n"
                               "held mutexes: 0 in words\n"
                               "answers of the layer: 22\n"
                               "findings: 0, with names of processes\n"
                               "not looked at: ";
    // Who is not root cannot see what others' processes have mapped.
    EXPECT_THAT(capture(), testing::AnyOf(listed + "0 in words\n", listed + "1 in words\n"));
    EXPECT_THAT(names(), testing::IsEmpty()) << "the lock was given back";
}

TEST_F(Capsule, MakesABoardThatAnswersTheSame)
{
    write("settings", "# a remark\nRadiolinkMode=Rl5\nFpgaVariant=TwoTdm\n");
    testsupport::writeFile("/sys/class/leds/red/korvanta_state", "fast\n");
    setResetCause(0); // cold: only a store in use keeps its objects
    testsupport::writeFile("/tmp/restart_cold", "");
    const StoreUser user(board(), {"slot", "5", "object", "LINK"});
    completeBoard();
    testsupport::writeFile(boardFile("tmp/restart_cold"), "");
    capture();
    EXPECT_EQ(create(capsule()),
              "not carried over: the mutex of the slot id, which is made anew and free\n"
              "not carried over: the mutexes of the blocks, which are made anew and free\n");
    EXPECT_EQ(shown("copy"), shown("b"));
    EXPECT_EQ(testsupport::readFile(file("copy/settings")),
              testsupport::readFile(boardFile("settings")));
    if (std::string(BSP_TEST_EMULATOR).empty()) {
        EXPECT_EQ(ask("bsp", {"getSlotId"}), "5\n");
        EXPECT_EQ(ask("bsp", {"getTrafFpgaType"}), "Gannet\n");
    }
}

TEST_F(Capsule, Of32BitsMakesABoardThatAnswersTheSame)
{
    const std::string made = std::string(BSP_TEST_DATA_DIR) + "/capsule-32-bits.json";
    const std::string document = testsupport::readFile(made);
    ASSERT_THAT(document, HasSubstr("\"wordSize\": 32,\n"));
    EXPECT_EQ(create(made),
              "not carried over: the mutex of the slot id, which is made anew and free\n"
              "not carried over: the mutexes of the blocks, which are made anew and free\n");
    EXPECT_EQ(answersIn(shown("copy")), answersIn(document));
    if (std::string(BSP_TEST_EMULATOR).empty()) {
        EXPECT_EQ(answersIn(ask("bsp-diag", {"info", "--json"})), answersIn(document));
        EXPECT_EQ(ask("bsp", {"getSlotId"}), "5\n");
        EXPECT_EQ(ask("bsp", {"getRadiolinkMode"}), "Rl5\n");
        EXPECT_EQ(ask("bsp", {"getProductId"}), "NXU2004\n");
    }
}

TEST_F(Capsule, KeepsASemaphoreAtZero)
{
    const StoreUser holder(board(), {"slot", "5", "lockslot", "hold"});
    const std::string listed = capture();
    EXPECT_THAT(listed, HasSubstr("warm area: 32768 bytes, without its lock: it was held for 2000 "
                                  "ms\n"));
    EXPECT_THAT(listed, HasSubstr("held mutexes: 1 in words\n"));
    const std::string text = testsupport::readFile(capsule());
    EXPECT_THAT(text, HasSubstr("\"name\": \"semaphore-held\""));
    EXPECT_THAT(text, HasSubstr("\"semaphore\": 0,"));
    EXPECT_THAT(create(capsule()),
                HasSubstr("not carried over: that a mutex was held, slot id: thread " +
                          std::to_string(holder.id()) + " of PROCESS (N, since TIME)\n"));
    const std::string semaphore = testsupport::readFile(file("copy/shm/sem.DtcmDbSharedSem"));
    EXPECT_EQ(semaphore.size(), sizeof(sem_t));
    EXPECT_EQ(semaphore.substr(0, 4), word(0));
}

TEST_F(Capsule, CarriesWhatIsMissingAndWhatIsDamaged)
{
    for (const char* const name : {"eeprom", "top.dtcm0", "top.sys_ctrl0"}) {
        fs::remove(boardFile(name));
    }
    write("settings", "damaged\xFF");
    fs::remove("/sys/class/leds/green/korvanta_state");
    completeBoard();
    capture();
    EXPECT_EQ(create(capsule()),
              "not carried over: EEPROM: the EEPROM cannot be read: the library answered 2\n"
              "not carried over: warm area: cannot open BOARD/top.dtcm0: No such file or "
              "directory\n"
              "not carried over: registers: no registers at BOARD/top.sys_ctrl0\n"
              "not carried over: LED green: cannot read /sys/class/leds/green/korvanta_state: No "
              "such file or directory\n");
    EXPECT_EQ(shown("copy"), shown("b"));
}

TEST_F(Capsule, DoesWithoutSettingsThatAreNone)
{
    const auto leftOut = [this](const std::string& why) {
        EXPECT_THAT(capture(), HasSubstr("settings: left out, " + why + "\n"));
        EXPECT_THAT(create(capsule()), HasSubstr("not carried over: settings: " + why + "\n"));
        fs::remove(capsule());
        fs::remove_all(file("copy"));
        fs::remove(boardFile("settings"));
    };
    leftOut("there are none");
    ASSERT_EQ(::mkfifo(boardFile("settings").c_str(), 0600), 0);
    leftOut("they are no regular file");
    write("settings", std::string(1024UL * 1024 + 1, '#'));
    leftOut("they are more than 1048576 bytes");
    write("settings", std::string(1024UL * 1024, '#'));
    EXPECT_THAT(capture(), HasSubstr("settings: 1048576 bytes\n"));
}

/** Beside what the list names, whose kinds are in the schema. */
TEST_F(Capsule, HasNothingElseOfTheMachine)
{
    const std::string secret = "do-not-tell";
    write("settings", "RadiolinkMode=Rl5\n");
    write(secret, secret);
    testsupport::writeFile("/dev/shm/" + secret, secret);
    testsupport::writeFile("/tmp/" + secret, secret);
    fs::create_directory("/sys/class/leds/" + secret);
    testsupport::Program other = testsupport::programAt("/bin/sleep", {"100"});
    other.name = secret;
    other.foreign = true;
    const pid_t process = other.start();
    testsupport::Program program = diag({"capture", capsule()});
    program.environment["SECRET"] = secret;
    EXPECT_EQ(program.run().status, 0);
    ::kill(process, SIGKILL);
    testsupport::waitFor(process);
    EXPECT_THAT(testsupport::readFile(capsule()),
                Not(AnyOf(HasSubstr(secret), HasSubstr("sleep"))));
}

TEST_F(Capsule, IsMadeForItsOwnerInAPlaceThatIsFree)
{
    capture();
    EXPECT_EQ(fs::status(capsule()).permissions(), fs::perms(0600));
    EXPECT_EQ(diag({"capture", capsule()}).run(),
              testsupport::refusal("bsp-diag: cannot make '" + capsule() + "': File exists\n"));
}

} // namespace
