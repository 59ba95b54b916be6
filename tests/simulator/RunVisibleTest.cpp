#include "RunTestBase.h"

#include <cstdlib>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testsupport;

/** Puts the temporary directories of a scope below another directory. */
class TemporaryPlace
{
public:
    explicit TemporaryPlace(const char* place)
    {
        const char* const former = std::getenv("TMPDIR");
        m_former = former == nullptr ? "" : former;
        ::setenv("TMPDIR", place, 1);
    }
    ~TemporaryPlace()
    {
        m_former.empty() ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", m_former.c_str(), 1);
    }
    TemporaryPlace(const TemporaryPlace&) = delete;
    TemporaryPlace& operator=(const TemporaryPlace&) = delete;

private:
    std::string m_former;
};

/** Paths of the host below /tmp and /dev/shm that a board shows. */
class RunVisible : public RunTest
{};

TEST_P(RunVisible, PathsOnRequest)
{
    for (const char* place : {"/tmp", "/dev/shm"}) {
        const TemporaryPlace temporary(place);
        const TemporaryDirectory host;
        fs::create_directory(host.path() / "folder");
        testsupport::writeFile(host.file("folder/inside"), "inside\n");
        testsupport::writeFile(host.file("file"), "text\n");
        testsupport::writeFile(host.file("other"), "other\n");
        const Words command{"/bin/sh", "-c",
                            "cd $0; cat file folder/inside; cat other; echo $?;"
                            "echo more >> file",
                            host.path()};
        Words words{"run", "--bind", host.file("folder"), "--bind=" + host.file("file"), file("b")};
        words.insert(words.end(), command.begin(), command.end());
        Program program = boardTool(words);
        program.directory = "/";
        program.merged = true;
        EXPECT_EQ(program.run().out, "text\ninside\ncat: other: No such file or directory\n1\n");
        EXPECT_EQ(readFile(host.file("file")), "text\nmore\n");
    }
}

TEST_P(RunVisible, PathsRelativeToTheWorkingDirectory)
{
    const TemporaryDirectory host;
    testsupport::writeFile(host.file("file"), "text\n");
    const fs::path relative = fs::relative(host.path(), fs::path(file("b")).parent_path());
    expectOutput(boardTool({"run", "--bind", relative / "file", "b", "cat", host.file("file")}),
                 "text\n");
}

TEST_P(RunVisible, OnlyWhatThereIs)
{
    expectFailure(boardTool({"run", "--bind", "nosuch", "b", "true"}),
                  "bsp-board: cannot show 'nosuch': No such file or directory\n", 125);
    expectFailure(boardTool({"run", "--bind", "", "b", "true"}),
                  "bsp-board: cannot show '': No such file or directory\n", 125);
}

TEST_P(RunVisible, TheFoldersOfPrograms)
{
    const TemporaryDirectory programs("/tmp");
    const TemporaryDirectory libraries("/tmp");
    fs::create_directory(programs.path() / "bin");
    writeScript(programs.file("bin/greet"), "echo hello");
    testsupport::writeFile(libraries.file("library"), "text\n");
    fs::create_directory_symlink(libraries.path(), file("link"));
    for (int i = 0; i < 2; ++i) {
        Program program =
            boardToolInRoot({"run", file("b"), "sh", "-c", "greet; cat \"$LD_LIBRARY_PATH\"/*"},
                            "/tmp/no/such:" + programs.file("bin"));
        program.environment["LD_LIBRARY_PATH"] = file("link");
        expectOutput(program, "hello\ntext\n");
    }
}

TEST_P(RunVisible, TheBoardsOwnFoldersOfPrograms)
{
    const TemporaryDirectory programs("/tmp");
    writeScript(programs.file("greet"), "echo host");
    plant(programs.path(), "echo board");
    expectOutput(boardToolInRoot({"run", file("b"), "sh", "-c", "greet"}, programs.path()),
                 "board\n");
}

TEST_P(RunVisible, NoProgramsThatOthersPutInFrontOfTheHosts)
{
    const TemporaryDirectory programs;
    writeScript(programs.file("greet"), "echo host");
    fs::permissions(programs.file("greet"), fs::perms::all);
    const fs::path planted = plant(programs.path(), "echo planted");
    constexpr uid_t other = 65534;
    if (::geteuid() != 0 || ::chown(planted.c_str(), other, other) != 0) {
        GTEST_SKIP() << "only root can make what other users own";
    }
    expectOutput(boardToolInRoot({"run", file("b"), "sh", "-c", "greet"}, programs.path()),
                 "host\n");
    Program named = boardTool({"run", file("b"), programs.file("greet")});
    named.directory = "/";
    expectOutput(named, "host\n");
}

TEST_P(RunVisible, TheBoardsFilesToAllKindsOfSystemCalls)
{
    expectOutput(shell("cd /tmp; mkdir d; echo text > d/a; mv d/a b; ln b c; ln -s /tmp/c link;"
                       "flock c cat link; stat -c %s b; mv c /dev/shm/c; ls -i /dev/shm/c | wc -l;"
                       "cp -a b link /dev/shm; rm -r d; find /dev/shm -type l"),
                 "text\n5\n1\n/dev/shm/link\n");
    EXPECT_EQ(contents("b/shm/c"), "text\n");
    EXPECT_EQ(contents("b/tmp/b"), "text\n");
    EXPECT_EQ(contents("b/shm/b"), "text\n");
}

INSTANTIATE_TEST_SUITE_P(Isolated, RunVisible, testing::Values("", "--isolate=proot"),
                         nameOfIsolation);

} // namespace
