#include "RunTestBase.h"
#include "SimulatorTest.h"

#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace testing;

/** Sets what a program would set, on board "b". */
class Set : public SimulatorTest
{
protected:
    void SetUp() override { expectQuiet({"create", "b", "--product", "NXU4A"}); }

    std::string show() const { return run({"show", "b"}).out; }

    /** What the tool says on the board. */
    std::string ask(const std::string& query) const
    {
        return run(wordsToRun("b", testsupport::tool("bsp").path, {query})).out;
    }

    void expectMisuse(Words words, const std::string& complaint) const
    {
        const std::vector<std::string> before = everything();
        words.insert(words.begin(), {"set", "b"});
        SimulatorTest::expectMisuse(words, complaint);
        EXPECT_EQ(everything(), before);
    }
};

class SetSlot : public Set
{
protected:
    void SetUp() override
    {
        Set::SetUp();
        if (!std::string(BSP_TEST_EMULATOR).empty()) {
            GTEST_SKIP() << "a program that an emulator runs cannot start itself on a board";
        }
    }
};

TEST_F(SetSlot, KeepsTheSlotIdOverAWarmRestart)
{
    expectQuiet({"set", "b", "slot", "5"});
    EXPECT_THAT(show(), EndsWith("\nWarm area       1 of 32 blocks used\n"
                                 "Block 1         SLOT\n"
                                 "Slot id         5\n"));
    EXPECT_TRUE(entries("b/shm").empty());
    expectQuiet({"restart", "b", "warm"});
    EXPECT_EQ(ask("getSlotId"), "5\n");
}

TEST_F(SetSlot, TakesAnyNumber)
{
    for (const std::string slotId : {"0", "-1", "-2147483648", "2147483647"}) {
        expectQuiet({"set", "b", "slot", slotId});
        EXPECT_THAT(show(), EndsWith("\nSlot id         " + slotId + '\n'));
    }
    expectQuiet({"set", "b", "slot", "--clear"});
    EXPECT_THAT(show(), EndsWith("\nSlot id         -1\n"));
}

TEST_F(SetSlot, FailsWhenTheBoardHasNoRoomForIt)
{
    write("b/top.dtcm0", std::string(32768, 'x'));
    expectQuiet({"restart", "b", "warm"});
    expectRefusal({"set", "b", "slot", "5"}, "the board's warm area does not take a slot id");
}

TEST_F(SetSlot, WaitsForRestartsOnly)
{
    const int board = ::open(file("b").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(board, LOCK_SH), 0);
    expectQuiet({"set", "b", "slot", "5"});
    ASSERT_EQ(::flock(board, LOCK_EX), 0);
    const pid_t set = boardTool({"set", "b", "slot", "6"}).start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(::waitpid(set, nullptr, WNOHANG), 0);
    ::close(board);
    EXPECT_EQ(testsupport::waitFor(set), 0);
}

TEST_F(SetSlot, FailsAsEveryCommandDoes)
{
    std::filesystem::create_directory(file("bin"));
    write("bin/proot", "#!/bin/sh\necho 'proot: no' >&2\nexit 1\n");
    std::filesystem::permissions(file("bin/proot"), std::filesystem::perms::owner_all);
    testsupport::Program set = boardTool({"set", "b", "slot", "5"});
    set.environment["PATH"] = file("bin");
    EXPECT_EQ(set.run(),
              testsupport::refusal(
                  "bsp-board: cannot separate a board from the host, which takes namespaces or "
                  "ptrace: bubblewrap is not installed; proot is refused here (proot: no)\n"));
}

TEST_F(Set, StoresSettings)
{
    expectQuiet({"set", "b", "RadiolinkMode", "Rl5"});
    expectQuiet({"set", "b", "FpgaVariant", "TwoTdm"});
    EXPECT_EQ(ask("getRadiolinkMode"), "Rl5\n");
    EXPECT_THAT(show(), HasSubstr("\nStore           FpgaVariant = TwoTdm\n"
                                  "                RadiolinkMode = Rl5\n"));
    expectQuiet({"set", "b", "RadiolinkMode", "--clear"});
    expectQuiet({"set", "b", "--clear", "FpgaVariant"});
    EXPECT_THAT(show(), HasSubstr("\nStore           empty\n"));
}

TEST_F(Set, StoresAnythingOnRequest)
{
    expectQuiet({"set", "--any", "b", "RadiolinkMode", "Rl6"});
    expectQuiet({"set", "--any", "b", "My key", ""});
    EXPECT_THAT(show(), HasSubstr("\nStore           My key = \n"
                                  "                RadiolinkMode = Rl6\n"));
    expectQuiet({"set", "--any", "b", "My key", "--clear"});
    EXPECT_THAT(show(), Not(HasSubstr("My key")));
}

TEST_F(Set, TakesNoTypingErrors)
{
    expectMisuse({"radiolinkMode", "Rl5"}, "there is no setting 'radiolinkMode'; it can be slot, "
                                           "RadiolinkMode or FpgaVariant, or with --any any other");
    expectMisuse(
        {"RadiolinkMode", "rl5"},
        "'rl5' is no value of RadiolinkMode; it can be Rl4 or Rl5, or with --any any other");
    expectMisuse({"FpgaVariant", ""}, "'' is no value of FpgaVariant; it can be TwoTdm or "
                                      "OneTdmRleEqpNoMlhc, or with --any any other");
    for (const std::string slotId : {"five", "5x", "", "2147483648", "0x5", " 5"}) {
        expectMisuse({"slot", slotId},
                     '\'' + slotId + "' is no slot id, which is a whole number of 32 bits");
    }
}

TEST_F(Set, WantsAKeyAndAValue)
{
    expectMisuse({}, "KEY is required");
    expectMisuse({"slot"}, "VALUE is required");
    expectMisuse({"RadiolinkMode"}, "VALUE is required");
    expectMisuse({"RadiolinkMode", "Rl5", "--clear"}, "VALUE and --clear cannot be given together");
}

TEST_F(Set, WantsABoard)
{
    std::filesystem::create_directory(file("home"));
    std::filesystem::create_directory_symlink("b", file("link"));
    for (const std::string key : {"slot", "RadiolinkMode"}) {
        const std::string value = key == "slot" ? "5" : "Rl5";
        expectRefusal({"set", "no", key, value}, "no board 'no': No such file or directory");
        expectRefusal({"set", "", key, value}, "no board '': No such file or directory");
        expectRefusal({"set", "home", key, value},
                      "no board 'home': there is nothing of a board in it");
        expectRefusal({"set", "link", key, value}, "no board 'link': it is a symbolic link");
    }
    EXPECT_TRUE(entries("home").empty());
}

TEST_F(Set, SaysThatTheStoreRefuses)
{
    std::filesystem::create_directory(file("b/config.mdb"));
    expectRefusal({"set", "b", "RadiolinkMode", "Rl5"},
                  "the store of 'b' does not take 'RadiolinkMode'");
}

struct RestartedBoard
{
    const char* product;
    const char* restart;
    const char* slotId; /**< What is left of slot id 5. */
};

void PrintTo(const RestartedBoard& parameter, std::ostream* stream)
{
    *stream << parameter.product << ' ' << parameter.restart;
}

/** A program on the board sets the slot id, another one asks for it after a restart. */
class Slot : public SimulatorTest, public testing::WithParamInterface<RestartedBoard>
{
protected:
    std::string slot(const Words& arguments = {}) const
    {
        return testsupport::outputOf(boardTool(wordsToRun("b", BSP_TEST_SLOT_PROGRAM, arguments)));
    }
};

TEST_P(Slot, IsKeptOrLostByARestart)
{
    expectQuiet({"create", "b", "--product", GetParam().product});
    EXPECT_EQ(slot(), "-1\n");
    EXPECT_EQ(slot({"5"}), "5\n");
    EXPECT_THAT(run({"show", "b"}).out, EndsWith("\nWarm area       1 of 32 blocks used\n"
                                                 "Block 1         SLOT\n"
                                                 "Slot id         5\n"));
    EXPECT_TRUE(entries("b/shm").empty());
    expectQuiet({"restart", "b", GetParam().restart});
    EXPECT_EQ(run(wordsToRun("b", testsupport::tool("bsp").path, {"getSlotId"})),
              testsupport::answer(std::string(GetParam().slotId) + '\n'));
}

std::string nameOf(const testing::TestParamInfo<RestartedBoard>& info)
{
    return std::string(info.param.product) + '_' + info.param.restart;
}

// The first decides by a register, the second by a marker; the third keeps nothing.
INSTANTIATE_TEST_SUITE_P(Boards, Slot,
                         testing::Values(RestartedBoard{"NXU4A", "warm", "5"},
                                         RestartedBoard{"NXU4A", "watchdog", "5"},
                                         RestartedBoard{"NXU4A", "cold", "-1"},
                                         RestartedBoard{"KT4851_4", "warm", "5"},
                                         RestartedBoard{"KT4851_4", "watchdog", "5"},
                                         RestartedBoard{"KT4851_4", "cold", "-1"},
                                         RestartedBoard{"KT4766", "warm", "-1"},
                                         RestartedBoard{"KT4766", "watchdog", "-1"},
                                         RestartedBoard{"KT4766", "cold", "-1"}),
                         nameOf);

} // namespace
