#include "Sanitizers.h"
#include "SimulatorTest.h"
#include "TracedProgram.h"

#include <csignal>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

/** Something happens to a command before each of its system calls in turn. */
class Interrupted : public SimulatorTest
{
protected:
    void SetUp() override
    {
        if (!testsupport::canTrace()) {
            GTEST_SKIP() << "programs cannot be stopped at a system call in an emulator";
        }
    }

    /** Any use of the program begins with the calls before this one. */
    int firstCall() const
    {
        constexpr int lastOnes = 5;
        return testsupport::countCalls(boardTool({"--version"})) - lastOnes;
    }
};

class CreateKilled : public Interrupted
{
protected:
    /** Kills a `create b` before each of its system calls in turn, but for the program's first. */
    template <typename Check> void killEverywhere(const Check& check) const
    {
        const int first = firstCall();
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

class CreateLeftovers : public SimulatorTest
{};

TEST_F(CreateLeftovers, OfOthersAreNotTakenAway)
{
    for (const char* name : {".bsp-board-held", ".bsp-board-dead"}) {
        fs::create_directory(file(name));
        write(std::string(name) + "/eeprom", "");
    }
    fs::create_directory(file("keep"));
    write("keep/file", "");
    fs::create_directory_symlink("keep", file(".bsp-board-link"));
    const int stagingDirectory = ::open(file(".bsp-board-held").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(stagingDirectory, LOCK_EX), 0);
    expectQuiet({"create", "b"});
    EXPECT_THAT(entries("."), ElementsAre(".bsp-board-held", ".bsp-board-link", "b", "keep"));
    EXPECT_THAT(entries("keep"), ElementsAre("file"));
    ::close(stagingDirectory);
}

TEST_F(CreateLeftovers, AreNotTakenAwayWhereOthersGiveTheNames)
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

struct ReplacedEntry
{
    const char* name;
    const char* entry;  /**< What is replaced. */
    const char* target; /**< What the link there leads to. */
};

void PrintTo(const ReplacedEntry& parameter, std::ostream* stream)
{
    *stream << parameter.entry;
}

/** While a board restarts, something of it is replaced by a link to what must not be touched. */
class RestartLinks : public Interrupted, public testing::WithParamInterface<ReplacedEntry>
{
protected:
    void SetUp() override
    {
        Interrupted::SetUp();
        if (IsSkipped()) {
            return;
        }
        fs::create_directories(file("keep/red"));
        fs::create_directories(file("keep/tmp/deep"));
        for (const char* name : {"keep/red/trigger", "keep/red/korvanta_state", "keep/trigger",
                                 "keep/korvanta_state", "keep/tmp/deep/file"})
        {
            write(name, "precious");
        }
        write("keep/file", std::string(32768, 'k'));
        fs::create_directory(file("pristine"));
        expectQuiet({"create", "pristine/b"});
        fs::create_directories(file("pristine/b/tmp/some/where"));
        write("pristine/b/tmp/some/where/file", "temporary");
        write("pristine/b/shm/sem.DtcmDbSharedSem", "semaphore");
        m_kept = kept();
    }

    std::vector<std::string> kept() const { return everything("keep"); }

    void renewBoard() const
    {
        fs::remove_all(file("b"));
        fs::copy(file("pristine/b"), file("b"), fs::copy_options::recursive);
    }

    void replaceByLink() const
    {
        const std::string entry = file(GetParam().entry);
        fs::remove_all(file("was"));
        std::error_code ignored;
        fs::rename(entry, file("was"), ignored);
        fs::create_symlink(file(GetParam().target), entry);
    }

    std::vector<std::string> m_kept;
};

TEST_P(RestartLinks, AreNotFollowedAtAnyMoment)
{
    // A program with the address sanitizer takes long to start: it is stopped at some moments only.
    const int step = testsupport::isSanitized("address") ? 8 : 1;
    const int first = firstCall();
    int call = first - step;
    do {
        renewBoard();
        call += step;
    } while (testsupport::actAtCall(boardTool({"restart", "b", "cold"}), call,
                                    [&](pid_t) { replaceByLink(); }) &&
             kept() == m_kept);
    EXPECT_EQ(kept(), m_kept) << "replaced before system call " << call;
    EXPECT_GT(call - first, 20) << "there must have been many moments";
}

INSTANTIATE_TEST_SUITE_P(
    Of, RestartLinks,
    testing::Values(ReplacedEntry{"SharedMemory", "b/shm", "keep"},
                    ReplacedEntry{"TemporaryFiles", "b/tmp", "keep"},
                    ReplacedEntry{"BelowTemporaryFiles", "b/tmp/some", "keep"},
                    ReplacedEntry{"Memory", "b/top.dtcm0", "keep/file"},
                    ReplacedEntry{"Registers", "b/top.sys_ctrl0", "keep/file"},
                    ReplacedEntry{"Leds", "b/leds", "keep"},
                    ReplacedEntry{"Led", "b/leds/red", "keep/red"},
                    ReplacedEntry{"Trigger", "b/leds/red/trigger", "keep/file"},
                    ReplacedEntry{"State", "b/leds/red/korvanta_state", "keep/file"},
                    ReplacedEntry{"Marker", "b/tmp/restart_cold", "keep/file"}),
    [](const auto& each) { return std::string(each.param.name); });

class RestartHardLinks : public SimulatorTest
{};

TEST_F(RestartHardLinks, AreNotWrittenThrough)
{
    expectQuiet({"create", "b"});
    write("keep", std::string(32768, 'k'));
    for (const std::string name : {"b/top.dtcm0", "b/top.sys_ctrl0", "b/leds/red/trigger"}) {
        fs::rename(file(name), file("was"));
        fs::create_hard_link(file("keep"), file(name));
        expectRefusal({"restart", "b", "cold"}, "only a simulated board can be restarted: '" +
                                                    name + "' has another name, too");
        fs::remove(file(name));
        fs::rename(file("was"), file(name));
    }
    EXPECT_EQ(contents("keep"), std::string(32768, 'k'));
}

} // namespace
