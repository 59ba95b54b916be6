#include "RefusedCalls.h"
#include "RunTestBase.h"

namespace
{

namespace fs = std::filesystem;
using namespace testsupport;

const std::string Impossible =
    "bsp-board: cannot separate a board from the host, which takes namespaces or ptrace: ";

/** What separates a board from the host, and what happens when that is missing or refused. */
class RunIsolation : public RunTest
{
protected:
    void SetUp() override
    {
        if (!std::string(BSP_TEST_EMULATOR).empty()) {
            GTEST_SKIP() << "proot cannot start this program for another machine once more";
        }
        RunTest::SetUp();
        fs::create_directory(file("bin"));
    }

    /** `bsp-board run OPTIONS... b COMMAND...` with nothing but the directory "bin" in PATH. */
    Program withOwnPrograms(const Words& options, const Words& command) const
    {
        Words words{"run"};
        words.insert(words.end(), options.begin(), options.end());
        words.push_back("b");
        words.insert(words.end(), command.begin(), command.end());
        Program program = boardTool(words);
        program.environment["PATH"] = file("bin");
        return program;
    }

    /** Something named bwrap that does as bubblewrap does until it is to run the command. */
    void makeBubblewrapThatFailsLate() const
    {
        writeScript(file("bin/bwrap"), "for word; do last=$word; done\n"
                                       "test \"$last\" = /bin/true && exit\n"
                                       "echo bwrap: sorry >&2; exit 1");
    }
};

TEST_P(RunIsolation, SaysWhatToInstall)
{
    expectFailure(withOwnPrograms({}, {"/bin/true"}),
                  Impossible + "bubblewrap is not installed; proot is not installed "
                               "(on Debian: apt-get install bubblewrap proot)\n",
                  125);
    expectFailure(withOwnPrograms({"--isolate=bubblewrap"}, {"/bin/true"}),
                  Impossible + "bubblewrap is not installed "
                               "(on Debian: apt-get install bubblewrap)\n",
                  125);
    expectFailure(withOwnPrograms({"--isolate", "proot"}, {"/bin/true"}),
                  Impossible + "proot is not installed (on Debian: apt-get install proot)\n", 125);
}

TEST_P(RunIsolation, SaysWhatIsRefused)
{
    writeScript(file("bin/bwrap"), "echo 'bwrap: no namespace' >&2; echo more >&2; exit 1");
    const std::string bubblewraps = "bubblewrap is refused here (bwrap: no namespace)";
    expectFailure(withOwnPrograms({}, {"/bin/true"}),
                  Impossible + bubblewraps +
                      "; proot is not installed (on Debian: apt-get install proot)\n",
                  125);
    expectFailure(withOwnPrograms({"--isolate=bubblewrap"}, {"/bin/true"}),
                  Impossible + bubblewraps + '\n', 125);
    writeScript(file("bin/proot"), "echo 'proot error: no ptrace' >&2; exit 1");
    expectFailure(withOwnPrograms({}, {"/bin/true"}),
                  Impossible + bubblewraps + "; proot is refused here (proot error: no ptrace)\n",
                  125);
}

TEST_P(RunIsolation, SaysThatTracingIsRefused)
{
    Program program = boardTool({"run", "--isolate=proot", "b", "/bin/true"});
    program.prepare = refuseTracing;
    expectFailure(program,
                  Impossible + "proot is refused here "
                               "(proot error: ptrace(TRACEME): Operation not permitted)\n",
                  125);
}

TEST_P(RunIsolation, UsesProotWhereMountsAreRefused)
{
    Program program = shell("echo run >> ran; echo x > /tmp/f; ls /sys/class/leds; exit 5");
    program.prepare = refuseMounts;
    EXPECT_EQ(program.run(), (Outcome{"green\nred\nyellow\n", "", 5}));
    EXPECT_EQ(contents("ran"), "run\n");
    EXPECT_EQ(contents("b/tmp/f"), "x\n");
}

TEST_P(RunIsolation, TakesNoFailureOfTheCommandForARefusal)
{
    expectFailure(shell("echo run >> ran; echo bwrap: sorry >&2; exit 1"), "bwrap: sorry\n", 1);
    EXPECT_EQ(contents("ran"), "run\n");
}

TEST_P(RunIsolation, LeavesTheComplaintToBubblewrapThatFailsLate)
{
    makeBubblewrapThatFailsLate();
    expectFailure(withOwnPrograms({}, {"/bin/echo"}), "bwrap: sorry\n", 125);
    writeScript(file("bin/bwrap"), "for word; do last=$word; done\n"
                                   "test \"$last\" = /bin/true && exit\n"
                                   "kill -KILL $$");
    expectFailure(withOwnPrograms({}, {"/bin/echo"}), "", 137);
}

TEST_P(RunIsolation, CanBeLeftOut)
{
    const TemporaryDirectory host;
    fs::remove_all(file("b/shm"));
    Program program = withOwnPrograms(
        {"--isolate=none"},
        {"/bin/sh", "-c", "echo $BSP_BOARD_DIR $TMPDIR; echo x > $0; exit 3", host.file("f")});
    program.environment["TMPDIR"] = host.path();
    EXPECT_EQ(
        program.run(),
        (Outcome{fs::canonical(file("b")).string() + ' ' + host.path().string() + '\n', "", 3}));
    EXPECT_EQ(readFile(host.file("f")), "x\n");
    expectFailure(withOwnPrograms({"--isolate=none"}, {"nosuch"}),
                  "bsp-board: cannot run 'nosuch': not found\n", 127);
}

TEST_P(RunIsolation, IsOneOfThree)
{
    expectMisuse({"run", "--isolate=chroot", "b", "true"},
                 "--isolate is bubblewrap, proot or none, not 'chroot'");
    expectMisuse({"run", "--isolate", "", "b", "true"},
                 "--isolate is bubblewrap, proot or none, not ''");
}

INSTANTIATE_TEST_SUITE_P(Isolated, RunIsolation, testing::Values(""), nameOfIsolation);

} // namespace
