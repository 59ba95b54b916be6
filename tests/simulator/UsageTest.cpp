#include "SimulatorTest.h"

#include <cstdio>
#include <filesystem>

#include <unistd.h>

namespace
{

using testing::HasSubstr;
using testsupport::Outcome;

class Usage : public SimulatorTest
{};

TEST_F(Usage, WantsACommand)
{
    expectRefusal({}, "bsp-board: a command is missing\nTry 'bsp-board --help'.\n", 2);
}

TEST_F(Usage, NamesTheCommandThatThereIsNot)
{
    expectRefusal({"nosuch", "b"}, "bsp-board: unknown command 'nosuch'\nTry 'bsp-board --help'.\n",
                  2);
    expectRefusal({"Show", "b"}, "bsp-board: unknown command 'Show'\nTry 'bsp-board --help'.\n", 2);
    expectRefusal({"--nosuch"}, "bsp-board: unknown option '--nosuch'\nTry 'bsp-board --help'.\n",
                  2);
}

TEST_F(Usage, NamesTheWordThatNoCommandTakes)
{
    expectRefusal({"variants", "extra"},
                  "bsp-board: unexpected argument 'extra'\nTry 'bsp-board variants --help'.\n", 2);
    expectRefusal({"show", "b", ""},
                  "bsp-board: unexpected argument ''\nTry 'bsp-board show --help'.\n", 2);
    expectRefusal({"create", "b", "--nosuch"},
                  "bsp-board: unknown option '--nosuch'\nTry 'bsp-board create --help'.\n", 2);
    expectRefusal({"restart", "b", "cold", "c"},
                  "bsp-board: unexpected argument 'c'\nTry 'bsp-board restart --help'.\n", 2);
    expectRefusal({"run", "--nosuch", "b", "true"},
                  "bsp-board: unknown option '--nosuch'\nTry 'bsp-board run --help'.\n", 2);
}

TEST_F(Usage, NamesTheOptionThatIsWrong)
{
    const std::string hint = "\nTry 'bsp-board create --help'.\n";
    expectRefusal({"create", "b", "--product"}, "bsp-board: --product needs a value" + hint, 2);
    expectRefusal({"create", "b", "--code", "00", "--code", "01"},
                  "bsp-board: --code is given more than once" + hint, 2);
    expectRefusal({"create", "--"}, "bsp-board: DIR is required" + hint, 2);
    expectRefusal({"show", "b", "--dump=much"},
                  "bsp-board: --dump takes no value\nTry 'bsp-board show --help'.\n", 2);
}

TEST_F(Usage, KeepsWordsThatOnlyItUsesToItself)
{
    for (const std::string socket : {"x", "-1", "99999999999"}) {
        expectRefusal({"--command-runner", socket, "true"},
                      "bsp-board: unknown option '--command-runner'\nTry 'bsp-board --help'.\n", 2);
    }
}

TEST_F(Usage, TakesNoOtherWordForAnEmptyValue)
{
    expectRefusal({"create", "--code=", "b"},
                  "bsp-board: '' is no hardware code, which has 16 hexadecimal digits\n"
                  "Try 'bsp-board create --help'.\n",
                  2);
    expectRefusal({"run", "--isolate=", "b", "true"},
                  "bsp-board: --isolate is bubblewrap, proot or none, not ''\n"
                  "Try 'bsp-board run --help'.\n",
                  2);
}

TEST_F(Usage, TellsItsVersion)
{
    const Outcome outcome = run({"--version"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "bsp-board " BSP_TEST_VERSION "\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Usage, NamesAWorkingDirectoryThatIsGone)
{
    expectQuiet({"create", "b"});
    std::filesystem::create_directory(file("gone"));
    testsupport::Program program = boardTool({"run", file("b"), "true"});
    program.directory = file("gone");
    program.prepare = [this] { std::filesystem::remove(file("gone")); };
    const Outcome outcome = program.run();
    EXPECT_EQ(outcome.err,
              "bsp-board: cannot find the working directory: No such file or directory\n");
    EXPECT_EQ(outcome.status, 125);
}

TEST_F(Usage, MakesNoStandardStreamOfABoardsFile)
{
    expectQuiet({"create", "b"});
    const std::string memory = contents("b/top.dtcm0");
    testsupport::Program program = boardTool({"restart", "b", "warm"});
    program.prepare = [] {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(stream);
        }
    };
    EXPECT_EQ(testsupport::waitFor(program.start()), 0);
    // Complains, when it has its board's files open already.
    std::filesystem::remove(file("b/top.sys_ctrl0"));
    EXPECT_EQ(testsupport::waitFor(program.start()), 1);
    EXPECT_EQ(contents("b/top.dtcm0"), memory);
}

TEST_F(Usage, WantsADirectory)
{
    for (const std::string command : {"create", "show", "restart", "set", "run"}) {
        expectRefusal({command},
                      "bsp-board: DIR is required\nTry 'bsp-board " + command + " --help'.\n", 2);
    }
}

TEST_F(Usage, ListsTheCommandsOnRequest)
{
    for (const char* option : {"--help", "-h"}) {
        const Outcome outcome = run({option});
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0);
        for (const std::string command : {"variants", "create", "show", "restart", "set", "run"}) {
            EXPECT_THAT(outcome.out, HasSubstr("\n  " + command + ' '));
        }
    }
}

TEST_F(Usage, EachCommandExplainsItself)
{
    const std::vector<std::pair<std::string, std::string>> usages{
        {"variants", "[OPTIONS]"},
        {"create", "[OPTIONS] DIR"},
        {"show", "[OPTIONS] DIR"},
        {"restart", "[OPTIONS] DIR CAUSE"},
        {"set", "[OPTIONS] DIR KEY [VALUE]"},
        {"run", "[OPTIONS] DIR COMMAND"},
    };
    for (const auto& [command, usage] : usages) {
        const Outcome outcome = run({command, "--help"});
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("\nUsage: bsp-board " + command + ' ' + usage + '\n'));
    }
}

TEST_F(Usage, FailsWhenTheAnswerCannotBeWritten)
{
    testsupport::Program program = boardTool({"variants"});
    program.prepare = [] {
        if (std::freopen("/dev/full", "w", stdout) == nullptr) {
            std::perror("/dev/full");
        }
    };
    const Outcome outcome = program.run();
    EXPECT_EQ(outcome.err, "bsp-board: cannot write to standard output\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(Usage, FailsWhenThereIsNowhereToWriteTheAnswer)
{
    expectQuiet({"create", "b"});
    const auto withoutOutput = [this](const Words& words) {
        testsupport::Program program = boardTool(words);
        program.prepare = [] { ::close(STDOUT_FILENO); };
        return program.run();
    };
    for (const Words& words : {Words{"variants"}, Words{"show", "b"}, Words{"--version"}}) {
        const Outcome outcome = withoutOutput(words);
        EXPECT_EQ(outcome.err, "bsp-board: cannot write to standard output\n");
        EXPECT_EQ(outcome.status, 1);
    }
    EXPECT_EQ(withoutOutput({"restart", "b", "warm"}).status, 0);
}

} // namespace
