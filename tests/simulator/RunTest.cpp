#include "RunTestBase.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;
using namespace testsupport;

class Run : public RunTest
{
protected:
    /** A tool of this build on a board. */
    Program tool(const std::string& board, const std::string& name, const Words& arguments) const
    {
        return boardTool(wordsToRun(board, testsupport::tool(name).path, arguments));
    }
};

TEST_P(Run, GivesTheCommandTheBoardsOwnDirectories)
{
    expectOutput(shell("echo memory > /dev/shm/m; echo file > /tmp/f; ls /sys/class/leds;"
                       "cat /sys/class/leds/green/*; printf slow 1<> /sys/class/leds/red/trigger"),
                 "green\nred\nyellow\nsteady_off\nnone [korvanta]\n");
    EXPECT_EQ(contents("b/shm/m"), "memory\n");
    EXPECT_EQ(contents("b/tmp/f"), "file\n");
    EXPECT_EQ(contents("b/leds/red/trigger"), "slow [korvanta]\n");
}

TEST_P(Run, LeavesNothingOnTheHost)
{
    const std::string name = fs::path(file("b")).parent_path().filename().string() + "-mark";
    expectOutput(shell("touch /dev/shm/$1 /tmp/$1 /sys/class/leds/$1", {name}), "");
    EXPECT_THAT(entries("b/shm"), Contains(name));
    EXPECT_THAT(entries("b/tmp"), Contains(name));
    EXPECT_THAT(entries("b/leds"), Contains(name));
    EXPECT_FALSE(fs::exists("/dev/shm/" + name));
    EXPECT_FALSE(fs::exists("/tmp/" + name));
    EXPECT_FALSE(fs::exists("/sys/class/leds/" + name));
}

TEST_P(Run, KeepsTheDirectoriesFromCommandToCommand)
{
    expectOutput(shell("echo memory > /dev/shm/m; echo file > /tmp/f"), "");
    expectOutput(shell("cat /dev/shm/m /tmp/f"), "memory\nfile\n");
    expectQuiet({"restart", "b", "warm"});
    expectOutput(shell("ls /dev/shm; ls -d /tmp/f 2>&1 >/dev/null | grep -c f"), "1\n");
}

TEST_P(Run, TellsTheCommandWhereItsBoardIs)
{
    const std::string board = fs::canonical(file("b"));
    fs::create_directory_symlink("b", file("link"));
    for (const std::string& name :
         {std::string("b"), std::string("./b/"), std::string("link"), board}) {
        Program program = boardTool({"run", name, "sh", "-c", "echo $BSP_BOARD_DIR"});
        program.environment["BSP_BOARD_DIR"] = "/another";
        expectOutput(program, board + '\n');
    }
}

TEST_P(Run, MovesTheDirectoryForTemporaryFiles)
{
    Program program = shell("echo ${TMPDIR-none}");
    program.environment["TMPDIR"] = "/tmp/somewhere";
    expectOutput(program, "/tmp\n");
    program.environment.erase("TMPDIR");
    program.prepare = [] { ::unsetenv("TMPDIR"); };
    expectOutput(program, "none\n");
}

TEST_P(Run, KeepsTheWorkingDirectory)
{
    const TemporaryDirectory other;
    for (const std::string directory : {"/", "/usr/bin", "/tmp", "/dev/shm", other.path().c_str()})
    {
        Program program = shell("pwd");
        program.directory = directory;
        expectOutput(program, directory + '\n');
    }
    Program program = shell("cat file; echo more >> file");
    program.directory = other.path();
    testsupport::writeFile(other.file("file"), "text\n");
    expectOutput(program, "text\n");
    EXPECT_EQ(readFile(other.file("file")), "text\nmore\n");
}

TEST_P(Run, WorksWhereverTheBoardIs)
{
    for (const char* place : {"/dev/shm", "/var/tmp", "."}) {
        ::setenv("TMPDIR", fs::absolute(place).c_str(), 1);
        const TemporaryDirectory directory;
        const std::string board = fs::canonical(directory.path()) / "b";
        expectQuiet({"create", board});
        expectOutput(
            boardTool({"run", board, "--", "sh", "-c",
                       "echo x > /dev/shm/m; echo x > /tmp/f; cd \"$BSP_BOARD_DIR/shm\" && ls m"}),
            "m\n");
        EXPECT_EQ(readFile(board + "/shm/m"), "x\n");
        EXPECT_EQ(readFile(board + "/tmp/f"), "x\n");
        expectQuiet({"restart", board, "cold"});
        EXPECT_EQ(fs::exists(board + "/tmp/f"), false);
    }
}

TEST_P(Run, FindsProgramsThatTheBoardsDirectoriesHide)
{
    const TemporaryDirectory programs;
    writeScript(programs.file("greet"), "echo hello $1 from $0");
    fs::create_symlink(programs.file("greet"), file("link"));
    Program absolute = boardTool({"run", file("b"), programs.file("greet"), "world"});
    absolute.directory = "/";
    expectOutput(absolute, "hello world from " + programs.file("greet") + '\n');

    expectOutput(boardToolInRoot({"run", file("b"), "greet", "world"}, programs.path()),
                 "hello world from " + programs.file("greet") + '\n');

    expectOutput(boardTool({"run", "b", "./link", "world"}), "hello world from ./link\n");

    Program relative = boardTool({"run", file("b"), "./greet", "world"});
    relative.directory = programs.path();
    expectOutput(relative, "hello world from ./greet\n");
}

TEST_P(Run, PrefersTheBoardsOwnPrograms)
{
    const TemporaryDirectory programs("/tmp");
    writeScript(programs.file("greet"), "echo host");
    const fs::path own = plant(programs.path(), "echo board");
    expectOutput(boardTool({"run", "b", programs.file("greet")}), "board\n");
    fs::permissions(own / "greet", fs::perms::owner_read);
    expectOutput(boardTool({"run", "b", programs.file("greet")}), "host\n");
}

TEST_P(Run, CanUseAFileThatIsAllAloneInAHiddenDirectory)
{
    const TemporaryDirectory directory;
    const std::string name = "/tmp/" + directory.path().filename().string() + ".sh";
    writeScript(name, "echo hello");
    for (int i = 0; i < 2; ++i) {
        expectOutput(boardTool({"run", "b", name}), "hello\n");
    }
    fs::remove(name);
}

TEST_P(Run, PassesTheWordsOnUntouched)
{
    const Words words{"[a,b]", "", "--", "--help", "-x", "*", "a b", "\\", "\xFF\n"};
    std::string expected;
    for (const std::string& word : words) {
        expected += '<' + word + '>';
    }
    expectOutput(shell("printf '<%s>' \"$@\"", words), expected);
}

TEST_P(Run, TakesTheMarkInFrontOfTheCommandOrNot)
{
    expectOutput(boardTool({"run", "b", "echo", "--", "-n"}), "-- -n\n");
    expectOutput(boardTool({"run", "b", "--", "echo", "--", "-n"}), "-- -n\n");
    expectOutput(boardTool({"run", "--", "b", "echo", "--", "-n"}), "-- -n\n");
    expectOutput(boardTool({"run", "--", "b", "--", "echo", "create"}), "create\n");
    expectQuiet({"create", "./-b"});
    expectOutput(boardTool({"run", "--", "-b", "echo", "x"}), "x\n");
}

TEST_P(Run, LeavesTheStreamsAlone)
{
    write("input", "some input\n");
    Program program = shell("cat; echo error >&2");
    const std::string input = file("input");
    program.prepare = [&input] { ::dup2(::open(input.c_str(), O_RDONLY), STDIN_FILENO); };
    EXPECT_EQ(program.run(), (Outcome{"some input\n", "error\n", 0}));
}

TEST_P(Run, OpensNothingForTheCommand)
{
    const Program direct = [this] {
        Program program = shell("");
        program.path = "/bin/sh";
        program.foreign = true;
        program.arguments = {"-c", "echo /proc/self/fd/*"};
        return program;
    }();
    expectOutput(shell("echo /proc/self/fd/*"), direct.run().out);
}

TEST_P(Run, KeepsBoardsApart)
{
    constexpr const char* script =
        "echo $1 > /dev/shm/v; echo $1 > /tmp/v; echo $1 > /sys/class/leds/v;"
        "touch $1.ready; until test -e 1.ready && test -e 2.ready && test -e 3.ready;"
        "do sleep 0.01; done;"
        "cat /dev/shm/v /tmp/v /sys/class/leds/v > $1.out";
    std::vector<pid_t> processes;
    for (const std::string name : {"1", "2", "3"}) {
        expectQuiet({"create", "board" + name});
        processes.push_back(
            boardTool({"run", "board" + name, "sh", "-c", script, "sh", name}).start());
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(waitFor(process), 0);
    }
    for (const std::string name : {"1", "2", "3"}) {
        EXPECT_EQ(contents(name + ".out"), name + '\n' + name + '\n' + name + '\n');
    }
}

TEST_P(Run, LetsCommandsShareABoard)
{
    const pid_t first =
        shell("until test -e /dev/shm/from2; do sleep 0.01; done; touch /dev/shm/from1").start();
    const pid_t second =
        shell("touch /dev/shm/from2; until test -e /dev/shm/from1; do sleep 0.01; done").start();
    EXPECT_EQ(waitFor(first), 0);
    EXPECT_EQ(waitFor(second), 0);
}

TEST_P(Run, RunsTheToolsOnTheBoard)
{
    expectQuiet({"create", "nxu", "--product", "NXU2002"});
    expectOutput(tool("nxu", "bsp", {"getProductId"}), "NXU2002\n");
    expectOutput(tool("b", "bsp", {"getProductId"}), "KT4851_4\n");
    expectOutput(tool("b", "bsp", {"setRadiolinkMode", "Rl5"}), "");
    expectOutput(tool("b", "bsp", {"getRadiolinkMode"}), "Rl5\n");
    expectOutput(tool("nxu", "bsp", {"getRadiolinkMode"}), "Rl4\n");
}

TEST_P(Run, LetsTheToolSetTheBoardsLeds)
{
    expectOutput(tool("b", "led", {"setState", "green", "slow"}), "");
    expectOutput(tool("b", "led", {"setState", "red", "interrupting"}), "");
    expectOutput(tool("b", "led", {"setState", "red", "standby_hot"}), "");
    EXPECT_THAT(run({"show", "b"}).out, HasSubstr("\nLED yellow      steady_off\n"
                                                  "LED red         standby_hot\n"
                                                  "LED green       slow\n"));
    expectQuiet({"restart", "b", "warm"});
    EXPECT_THAT(run({"show", "b"}).out, HasSubstr("\nLED green       steady_off\n"));
}

INSTANTIATE_TEST_SUITE_P(Isolated, Run, Values("", "--isolate=proot"), nameOfIsolation);

} // namespace
