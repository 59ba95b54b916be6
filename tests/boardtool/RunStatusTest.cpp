#include "RunTestBase.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <grp.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testsupport::Program;

class RunStatus : public RunTest
{
protected:
    /** Waits for the end of the command of a script that made the file "ready". */
    int statusAfter(pid_t process, int signal) const
    {
        waitForFile("ready");
        EXPECT_EQ(::kill(process, signal), 0);
        return testsupport::waitFor(process);
    }
};

TEST_F(RunStatus, IsTheCommands)
{
    for (const int status : {0, 1, 2, 7, 126, 127, 255}) {
        EXPECT_EQ(shell("exit $1", {std::to_string(status)}).run().status, status);
    }
}

TEST_F(RunStatus, TellsTheSignalThatEndedTheCommand)
{
    for (const int signal : {SIGKILL, SIGTERM, SIGINT, SIGSEGV}) {
        EXPECT_EQ(shell("kill -$1 $$", {std::to_string(signal)}).run().status, 128 + signal);
    }
}

TEST_F(RunStatus, TellsThatThereIsNoSuchCommand)
{
    for (const std::string name : {"nosuch", "./nosuch", "/nosuch/command", "b/eeprom/x", "-x", ""})
    {
        expectFailure(boardTool({"run", "b", "--", name}),
                      "bsp-board: cannot run '" + name + "': not found\n", 127);
    }
}

TEST_F(RunStatus, TellsThatTheCommandCannotBeRun)
{
    write("plain", "text");
    expectFailure(boardTool({"run", "b", "./plain"}),
                  "bsp-board: cannot run './plain': Permission denied\n", 126);
    expectFailure(boardTool({"run", "b", "./b"}), "bsp-board: cannot run './b': Is a directory\n",
                  126);
    Program program = boardTool({"run", "b", "plain"});
    program.environment["PATH"] = fs::path(file("b")).parent_path().string() + ":/usr/bin:/bin";
    expectFailure(program, "bsp-board: cannot run 'plain': Permission denied\n", 126);
}

TEST_F(RunStatus, WantsACommand)
{
    for (const Words& words : {Words{"run", "b"}, Words{"run", "b", "--"}}) {
        expectRefusal(words, "bsp-board: COMMAND is required\nTry 'bsp-board run --help'.\n", 2);
    }
}

TEST_F(RunStatus, WantsABoard)
{
    expectRefusal({"run", "no", "true"}, "bsp-board: no board 'no': No such file or directory\n",
                  1);
    for (const std::string name : {"shm", "tmp", "leds"}) {
        const std::string directory = fs::canonical(file("b") / fs::path(name));
        fs::remove_all(directory);
        expectRefusal({"run", "b", "true"},
                      "bsp-board: there is no '" + directory +
                          "': only a simulated board can run a command\n",
                      1);
        fs::create_directory(directory);
    }
}

TEST_F(RunStatus, SaysHowToGetBubblewrap)
{
    Program program = boardTool({"run", "b", "true"});
    program.environment["PATH"] = file("b");
    expectFailure(program,
                  "bsp-board: cannot find bwrap, which runs commands on a board: install "
                  "bubblewrap (on Debian: apt-get install bubblewrap)\n",
                  1);
}

TEST_F(RunStatus, IsBubblewrapsWhenItCannotPrepareTheBoard)
{
    fs::create_directory(file("bin"));
    Program program = boardTool({"run", "b", "/bin/true"});
    program.environment["PATH"] = file("bin");
    writeScript(file("bin/bwrap"), "echo bwrap: sorry >&2; exit 1");
    expectFailure(program, "bwrap: sorry\n", 1);
    writeScript(file("bin/bwrap"), "kill -KILL $$");
    expectFailure(program, "", 137);
}

TEST_F(RunStatus, SignalsReachTheCommand)
{
    const std::vector<std::pair<int, std::string>> signals{{SIGHUP, "HUP"},   {SIGINT, "INT"},
                                                           {SIGQUIT, "QUIT"}, {SIGTERM, "TERM"},
                                                           {SIGUSR1, "USR1"}, {SIGUSR2, "USR2"}};
    for (const auto& [signal, name] : signals) {
        const pid_t process =
            shell("trap 'exit 9' $1; touch ready; while :; do sleep 0.01; done", {name}).start();
        EXPECT_EQ(statusAfter(process, signal), 9) << name;
        fs::remove(file("ready"));
    }
}

TEST_F(RunStatus, SignalsEndTheCommand)
{
    const pid_t process = shell("touch ready; exec sleep 60").start();
    EXPECT_EQ(statusAfter(process, SIGTERM), 128 + SIGTERM);
}

TEST_F(RunStatus, IgnoredSignalsStayIgnored)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator passes no ignored signals on";
    }
    Program program = shell("kill -HUP $$; echo alive");
    program.prepare = [] { std::signal(SIGHUP, SIG_IGN); };
    expectOutput(program, "alive\n");
}

TEST_F(RunStatus, NoticesTheEndThoughItsParentIgnoresEnds)
{
    Program program = shell("exit 7");
    program.prepare = [] { std::signal(SIGCHLD, SIG_IGN); };
    EXPECT_EQ(program.run().status, 7);
}

TEST_F(RunStatus, TheTerminalsInterruptIsForTheCommandToHandle)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator lets no process adopt others";
    }
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal == -1) {
        GTEST_SKIP() << "there are no pseudo terminals here";
    }
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    std::array<char, 100> name{};
    ASSERT_EQ(::ptsname_r(terminal, name.data(), name.size()), 0);

    Program program = shell("trap 'touch interrupted' INT; touch ready;"
                            "until test -e go; do sleep 0.01; done; exit 4");
    program.prepare = [&name] {
        ::setsid();
        const int line = ::open(name.data(), O_RDWR);
        ::ioctl(line, TIOCSCTTY, 0);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(line, stream);
        }
    };
    const pid_t process = program.start();
    waitForFile("ready");
    constexpr char interrupt = 3;
    ASSERT_EQ(::write(terminal, &interrupt, 1), 1);
    waitForFile("interrupted");
    write("go", "");
    EXPECT_EQ(testsupport::waitFor(process), 4);
    ::close(terminal);
}

TEST_F(RunStatus, OrdinaryUsersRunCommandsToo)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "the other cases ran as an ordinary user";
    }
    constexpr uid_t nobody = 65534;
    const auto becomeNobody = [] {
        if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
            ::_exit(99);
        }
    };
    Program probe{};
    probe.path = "bwrap";
    probe.foreign = true;
    probe.arguments = {"--dev-bind", "/", "/", testsupport::tool("bsp-board").path, "variants"};
    probe.prepare = becomeNobody;
    if (probe.run().status != 0 && std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "ordinary users cannot use bubblewrap or this build here";
    }
    fs::permissions(fs::path(file("b")).parent_path(), fs::perms::all);
    Program create = boardTool({"create", "theirs"});
    create.prepare = becomeNobody;
    expectOutput(create, "");
    Program program =
        boardTool({"run", "theirs", "sh", "-c", "id -u; echo x > /dev/shm/m; echo x > /tmp/f"});
    program.prepare = becomeNobody;
    expectOutput(program, "65534\n");
    EXPECT_EQ(contents("theirs/shm/m"), "x\n");
    EXPECT_EQ(contents("theirs/tmp/f"), "x\n");
}

} // namespace
