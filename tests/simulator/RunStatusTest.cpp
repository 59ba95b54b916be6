#include "Namespaces.h"
#include "Nodes.h"
#include "OtherUser.h"
#include "RunTestBase.h"

#include <csignal>

#include <fcntl.h>
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

TEST_P(RunStatus, IsTheCommands)
{
    for (const int status : {0, 1, 2, 7, 126, 127, 255}) {
        EXPECT_EQ(shell("exit $1", {std::to_string(status)}).run().status, status);
    }
}

TEST_P(RunStatus, TellsTheSignalThatEndedTheCommand)
{
    for (const int signal : {SIGKILL, SIGTERM, SIGINT, SIGSEGV}) {
        EXPECT_EQ(shell("kill -$1 $$", {std::to_string(signal)}).run().status, 128 + signal);
    }
}

TEST_P(RunStatus, TellsThatThereIsNoSuchCommand)
{
    // Folders that this user may not look into would be the reason.
    ::setenv("PATH", "/usr/bin:/bin", 1);
    for (const std::string name : {"nosuch", "./nosuch", "/nosuch/command", "b/eeprom/x", "-x", ""})
    {
        expectFailure(boardTool({"run", "b", "--", name}),
                      "bsp-board: cannot run '" + name + "': not found\n", 127);
    }
}

TEST_P(RunStatus, TellsThatTheCommandCannotBeRun)
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

TEST_P(RunStatus, WantsACommand)
{
    for (const Words& words : {Words{"run", "b"}, Words{"run", "b", "--"}}) {
        expectMisuse(words, "COMMAND is required");
    }
}

TEST_P(RunStatus, WantsABoard)
{
    expectFailure(boardTool({"run", "no", "true"}),
                  "bsp-board: no board 'no': No such file or directory\n", 125);
    fs::create_directory(file("empty"));
    const std::string empty = fs::canonical(file("empty"));
    expectFailure(boardTool({"run", "empty", "true"}),
                  "bsp-board: only a simulated board can run a command: '" + empty +
                      "/shm' is no directory\n",
                  125);
    EXPECT_TRUE(fs::is_empty(empty));
}

TEST_P(RunStatus, WantsAWorkingDirectory)
{
    Program program = boardTool({"run", fs::canonical(file("b")), "true"});
    fs::create_directory(file("gone"));
    program.directory = file("gone");
    program.prepare = [this] { ::rmdir(file("gone").c_str()); };
    expectFailure(program,
                  "bsp-board: cannot find the working directory: No such file or directory\n", 125);
}

TEST_P(RunStatus, RefusesABoardThatLeadsElsewhere)
{
    fs::create_directory(file("elsewhere"));
    for (const std::string name :
         {"shm", "tmp", "leds", "leds/red", "leds/green/trigger", "leds/yellow/korvanta_state"})
    {
        const std::string path = fs::canonical(file("b")).string() + '/' + name;
        fs::rename(path, file("original"));
        fs::create_symlink(file("elsewhere"), path);
        expectFailure(
            boardTool({"run", "b", "true"}),
            "bsp-board: only a simulated board can run a command: '" + path + "' is a link\n", 125);
        fs::remove(path);
        fs::rename(file("original"), path);
    }
    expectOutput(boardTool({"run", "b", "true"}), "");
}

TEST_P(RunStatus, MakesTheDirectoriesThatAnArchiveLost)
{
    for (const std::string name : {"shm", "tmp", "leds"}) {
        fs::remove_all(file("b/" + name));
    }
    expectOutput(shell("echo x > /dev/shm/m; echo y > /tmp/f; ls /sys/class/leds"), "");
    EXPECT_EQ(contents("b/shm/m"), "x\n");
    EXPECT_EQ(contents("b/tmp/f"), "y\n");
    EXPECT_EQ(fs::status(file("b/tmp")).permissions(), fs::perms::all | fs::perms::sticky_bit);
}

TEST_P(RunStatus, SignalsReachTheCommand)
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

TEST_P(RunStatus, SignalsEndTheCommand)
{
    const pid_t process = shell("touch ready; exec sleep 60").start();
    EXPECT_EQ(statusAfter(process, SIGTERM), 128 + SIGTERM);
}

TEST_P(RunStatus, IgnoredSignalsStayIgnored)
{
    expectOutput(prepared(shell("kill -HUP $$; echo alive"), [] { std::signal(SIGHUP, SIG_IGN); }),
                 "alive\n");
}

TEST_P(RunStatus, NoticesTheEndThoughItsParentIgnoresEnds)
{
    const Program program = prepared(shell("exit 7"), [] { std::signal(SIGCHLD, SIG_IGN); });
    EXPECT_EQ(program.run().status, 7);
}

TEST_P(RunStatus, TheTerminalsInterruptIsForTheCommandToHandle)
{
    const testsupport::Terminal terminal;
    if (!terminal.user().isOpen()) {
        GTEST_SKIP() << "there are no pseudo terminals here";
    }
    ASSERT_NE(terminal.path(), "");

    Program program = shell("trap 'touch interrupted' INT; touch ready;"
                            "until test -e go; do sleep 0.01; done; exit 4");
    program.prepare = [&terminal] {
        ::setsid();
        const int line = ::open(terminal.path().c_str(), O_RDWR);
        ::ioctl(line, TIOCSCTTY, 0);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(line, stream);
        }
    };
    const pid_t process = program.start();
    waitForFile("ready");
    constexpr char interrupt = 3;
    ASSERT_EQ(::write(terminal.user().get(), &interrupt, 1), 1);
    waitForFile("interrupted");
    write("go", "");
    EXPECT_EQ(testsupport::waitFor(process), 4);
}

TEST_P(RunStatus, OrdinaryUsersRunCommandsToo)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "the other cases ran as an ordinary user";
    }
    if (!testsupport::haveNamespaces()) {
        GTEST_SKIP() << testsupport::NoNamespaces << "other users start nothing below proot";
    }
    if (!testsupport::canEmulatorBeUsedByOthers()) {
        GTEST_SKIP() << testsupport::NoEmulatorForOthers;
    }
    const testsupport::SharedCopy shared(testsupport::tool("bsp-board").path);
    fs::permissions(fs::path(file("b")).parent_path(), fs::perms::all);
    const auto boardToolOfOthers = [&](const Words& words) {
        Program program = prepared(boardTool(words), testsupport::becomeOrdinaryUser);
        program.path = shared.path();
        return program;
    };
    expectOutput(boardToolOfOthers({"create", "theirs"}), "");
    expectOutput(boardToolOfOthers(
                     {"run", "theirs", "sh", "-c", "id -u; echo x > /dev/shm/m; echo x > /tmp/f"}),
                 "65534\n");
    EXPECT_EQ(contents("theirs/shm/m"), "x\n");
    EXPECT_EQ(contents("theirs/tmp/f"), "x\n");
}

INSTANTIATE_TEST_SUITE_P(Isolated, RunStatus, testing::Values("", "--isolate=proot"),
                         nameOfIsolation);

} // namespace
