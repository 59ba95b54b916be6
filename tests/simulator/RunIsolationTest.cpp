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

    void expectImpossible(const Words& options, const std::string& why) const
    {
        expectFailure(withOwnPrograms(options, {"/bin/true"}), Impossible + why + '\n', 125);
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
    expectImpossible({}, "bubblewrap is not installed; proot is not installed "
                         "(on Debian: apt-get install bubblewrap proot)");
    expectImpossible({"--isolate=bubblewrap"}, "bubblewrap is not installed "
                                               "(on Debian: apt-get install bubblewrap)");
    expectImpossible({"--isolate", "proot"},
                     "proot is not installed (on Debian: apt-get install proot)");
}

TEST_P(RunIsolation, SaysWhatIsRefused)
{
    writeScript(file("bin/bwrap"), "echo 'bwrap: no namespace' >&2; echo more >&2; exit 1");
    const std::string bubblewraps = "bubblewrap is refused here (bwrap: no namespace)";
    expectImpossible({},
                     bubblewraps + "; proot is not installed (on Debian: apt-get install proot)");
    expectImpossible({"--isolate=bubblewrap"}, bubblewraps);
    writeScript(file("bin/proot"), "echo 'proot error: no ptrace' >&2; exit 1");
    expectImpossible({}, bubblewraps + "; proot is refused here (proot error: no ptrace)");
}

TEST_P(RunIsolation, SaysThatTracingIsRefused)
{
    expectFailure(prepared(boardTool({"run", "--isolate=proot", "b", "/bin/true"}), refuseTracing),
                  Impossible + "proot is refused here "
                               "(proot error: ptrace(TRACEME): Operation not permitted)\n",
                  125);
}

TEST_P(RunIsolation, UsesProotWhereMountsAreRefused)
{
    const Program program = prepared(
        shell("echo run >> ran; echo x > /tmp/f; ls /sys/class/leds; exit 5"), refuseMounts);
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
