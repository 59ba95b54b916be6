#include "SimulatorTest.h"
#include "TracedProgram.h"

#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;

class CreateKilled : public SimulatorTest
{
protected:
    void SetUp() override
    {
        if (!testsupport::canTrace()) {
            GTEST_SKIP() << "programs cannot be stopped at a system call in an emulator";
        }
    }

    /** Kills a `create b` before each of its system calls in turn, but for the program's first. */
    template <typename Check> void killEverywhere(const Check& check) const
    {
        constexpr int lastOnes = 5;
        const int first = testsupport::countCalls(boardTool({"--version"})) - lastOnes;
        int call = first;
        bool killed = true;
        while (killed && !HasFailure()) {
            SCOPED_TRACE("killed before system call " + std::to_string(call));
            killed = testsupport::actAtCall(boardTool({"create", "b"}), call++,
                                            [](pid_t process) { ::kill(process, SIGKILL); });
            check();
            fs::remove_all(file("b"));
        }
        EXPECT_GT(call - first, 20) << "there must have been many moments";
    }
};

TEST_F(CreateKilled, LeavesAWholeBoardOrNone)
{
    killEverywhere([this] {
        if (fs::exists(file("b"))) {
            EXPECT_THAT(entries("b"),
                        ElementsAre("eeprom", "leds", "shm", "tmp", "top.dtcm0", "top.sys_ctrl0"));
            EXPECT_THAT(entries("b/tmp"), ElementsAre("restart_cold"));
        }
    });
}

TEST_F(CreateKilled, LeavesNothingThatTheNextOneDoesNotTakeAway)
{
    killEverywhere([this] {
        expectQuiet({"create", "c"});
        EXPECT_THAT(entries("."), AnyOf(ElementsAre("c"), ElementsAre("b", "c")));
        fs::remove_all(file("c"));
    });
}

TEST_F(SimulatorTest, CreateTakesNoOthersDraftAway)
{
    for (const char* name : {".bsp-board-held", ".bsp-board-dead"}) {
        fs::create_directory(file(name));
        write(std::string(name) + "/eeprom", "");
    }
    fs::create_directory(file("keep"));
    write("keep/file", "");
    fs::create_directory_symlink("keep", file(".bsp-board-link"));
    const int draft = ::open(file(".bsp-board-held").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(draft, LOCK_EX), 0);
    expectQuiet({"create", "b"});
    EXPECT_THAT(entries("."), ElementsAre(".bsp-board-held", ".bsp-board-link", "b", "keep"));
    EXPECT_THAT(entries("keep"), ElementsAre("file"));
    ::close(draft);
}

TEST_F(SimulatorTest, CreateTakesNothingAwayWhereOthersGiveTheNames)
{
    fs::create_directory(file("shared"));
    fs::create_directory(file("shared/.bsp-board-mine"));
    fs::permissions(file("shared"), fs::perms::all);
    expectQuiet({"create", "shared/b"});
    EXPECT_THAT(entries("shared"), ElementsAre(".bsp-board-mine", "b"));
    fs::permissions(file("shared"), fs::perms::sticky_bit, fs::perm_options::add);
    expectQuiet({"create", "shared/c"});
    EXPECT_THAT(entries("shared"), ElementsAre("b", "c"));
}

} // namespace
