#include "SimulatorTest.h"

#include <cstdio>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace testing;

class Usage : public SimulatorTest
{};

TEST_F(Usage, WantsACommand)
{
    expectMisuse({}, "a command is missing", "");
}

TEST_F(Usage, NamesTheCommandThatThereIsNot)
{
    expectMisuse({"nosuch", "b"}, "unknown command 'nosuch'", "");
    expectMisuse({"Show", "b"}, "unknown command 'Show'", "");
    expectMisuse({"--nosuch"}, "unknown option '--nosuch'", "");
}

TEST_F(Usage, NamesTheWordThatNoCommandTakes)
{
    expectMisuse({"variants", "extra"}, "unexpected argument 'extra'");
    expectMisuse({"show", "b", ""}, "unexpected argument ''");
    expectMisuse({"create", "b", "--nosuch"}, "unknown option '--nosuch'");
    expectMisuse({"restart", "b", "cold", "c"}, "unexpected argument 'c'");
    expectMisuse({"run", "--nosuch", "b", "true"}, "unknown option '--nosuch'");
}

TEST_F(Usage, NamesTheOptionThatIsWrong)
{
    expectMisuse({"create", "b", "--product"}, "--product needs a value");
    expectMisuse({"create", "b", "--code", "00", "--code", "01"}, "--code is given more than once");
    expectMisuse({"create", "--"}, "DIR is required");
    expectMisuse({"show", "b", "--dump=much"}, "--dump takes no value");
}

TEST_F(Usage, KeepsWordsThatOnlyItUsesToItself)
{
    for (const std::string socket : {"x", "-1", "99999999999"}) {
        expectMisuse({"--command-runner", socket, "true"}, "unknown option '--command-runner'", "");
    }
}

TEST_F(Usage, TakesNoOtherWordForAnEmptyValue)
{
    expectMisuse({"create", "--code=", "b"},
                 "'' is no hardware code, which has 16 hexadecimal digits");
    expectMisuse({"run", "--isolate=", "b", "true"},
                 "--isolate is bubblewrap, proot or none, not ''");
}

TEST_F(Usage, TellsItsVersion)
{
    EXPECT_EQ(run({"--version"}), testsupport::answer("bsp-board " BSP_TEST_VERSION "\n"));
}

TEST_F(Usage, NamesAWorkingDirectoryThatIsGone)
{
    expectQuiet({"create", "b"});
    std::filesystem::create_directory(file("gone"));
    testsupport::Program program = boardTool({"run", file("b"), "true"});
    program.directory = file("gone");
    program.prepare = [this] { std::filesystem::remove(file("gone")); };
    EXPECT_EQ(
        program.run(),
        testsupport::refusal(
            "bsp-board: cannot find the working directory: No such file or directory\n", 125));
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
        expectMisuse({command}, "DIR is required");
    }
}

TEST_F(Usage, ListsTheCommandsOnRequest)
{
    for (const char* option : {"--help", "-h"}) {
        const std::string help = testsupport::outputOf(boardTool({option}));
        for (const std::string command : {"variants", "create", "show", "restart", "set", "run"}) {
            EXPECT_THAT(help, HasSubstr("\n  " + command + ' '));
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
        EXPECT_THAT(testsupport::outputOf(boardTool({command, "--help"})),
                    HasSubstr("\nUsage: bsp-board " + command + ' ' + usage + '\n'));
    }
}

const testsupport::Outcome NoOutput =
    testsupport::refusal("bsp-board: cannot write to standard output\n");

TEST_F(Usage, FailsWhenTheAnswerCannotBeWritten)
{
    testsupport::Program program = boardTool({"variants"});
    program.prepare = [] {
        if (std::freopen("/dev/full", "w", stdout) == nullptr) {
            std::perror("/dev/full");
        }
    };
    EXPECT_EQ(program.run(), NoOutput);
}

TEST_F(Usage, FailsWhenThereIsNowhereToWriteTheAnswer)
{
    expectQuiet({"create", "b"});
    const auto withoutOutput = [this](const Words& words) {
        return prepared(boardTool(words), [] { ::close(STDOUT_FILENO); }).run();
    };
    for (const Words& words : {Words{"variants"}, Words{"show", "b"}, Words{"--version"}}) {
        EXPECT_EQ(withoutOutput(words), NoOutput);
    }
    EXPECT_EQ(withoutOutput({"restart", "b", "warm"}).status, 0);
}

/** What bash offers for a command line that begins with bsp-board. */
class Completion : public SimulatorTest
{
protected:
    void SetUp() override
    {
        fs::create_directory(file("board"));
        fs::create_directory(file("other"));
        write("boards.txt", "");
    }

    /** @param words  as bash separates them: it takes "=" for a word */
    std::vector<std::string> offered(const Words& words) const
    {
        testsupport::Program bash = testsupport::programAt(
            "bash", {"--norc", "--noprofile", "-c", Script, BSP_TEST_COMPLETION});
        bash.foreign = true;
        bash.directory = fs::path(file("board")).parent_path();
        bash.arguments.insert(bash.arguments.end(), words.begin(), words.end());
        const testsupport::Outcome outcome = bash.run();
        EXPECT_EQ(outcome.err, "");
        return testsupport::linesOf(outcome.out);
    }

private:
    static constexpr const char* Script = R"(
        source "$0"
        _fruit() { COMPREPLY=($(compgen -W 'apple pear plum' -- "${COMP_WORDS[COMP_CWORD]}")); }
        complete -F _fruit fruit
        fruit-press() { :; }
        # As bash-completion does.
        _completion_loader() { test "$1" = vegetable && complete -F _fruit vegetable && return 124; }
        COMP_WORDS=(bsp-board "$@")
        COMP_CWORD=$#
        COMP_LINE="${COMP_WORDS[*]}"
        COMP_POINT=${#COMP_LINE}
        COMPREPLY=()
        _bsp_board bsp-board "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        ((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
    )";
};

TEST_F(Completion, OffersCommands)
{
    EXPECT_THAT(offered({"r"}), UnorderedElementsAre("restart", "run"));
    EXPECT_THAT(offered({"restart", ""}), UnorderedElementsAre("board", "other"));
    EXPECT_THAT(offered({"restart", "board", "w"}), UnorderedElementsAre("warm", "watchdog"));
}

TEST_F(Completion, OffersWhatTheToolTellsOfItself)
{
    EXPECT_THAT(offered({"-"}), UnorderedElementsAre("--help", "--version"));
}

TEST_F(Completion, OffersTheOptionOfRestartAnywhere)
{
    EXPECT_THAT(offered({"restart", "-"}), ElementsAre("--trust-other-users"));
    EXPECT_THAT(offered({"restart", "board", "-"}), ElementsAre("--trust-other-users"));
    EXPECT_THAT(offered({"restart", "--trust-other-users", "b"}), ElementsAre("board"));
    EXPECT_THAT(offered({"restart", "--trust-other-users", "board", "c"}), ElementsAre("cold"));
    EXPECT_TRUE(offered({"restart", "board", "cold", ""}).empty());
}

TEST_F(Completion, OffersWhatCanBeSet)
{
    EXPECT_THAT(offered({"se"}), ElementsAre("set"));
    EXPECT_THAT(offered({"set", "b"}), ElementsAre("board"));
    EXPECT_THAT(offered({"set", "board", ""}),
                UnorderedElementsAre("slot", "RadiolinkMode", "FpgaVariant"));
    EXPECT_THAT(offered({"set", "board", "RadiolinkMode", ""}), UnorderedElementsAre("Rl4", "Rl5"));
    EXPECT_THAT(offered({"set", "--any", "board", "FpgaVariant", ""}),
                UnorderedElementsAre("TwoTdm", "OneTdmRleEqpNoMlhc"));
    EXPECT_TRUE(offered({"set", "board", "slot", ""}).empty());
    EXPECT_THAT(offered({"set", "board", "slot", "-"}),
                UnorderedElementsAre("--clear", "--any", "--trust-other-users"));
}

TEST_F(Completion, OffersTheOptionsOfRun)
{
    EXPECT_THAT(offered({"run", "-"}),
                UnorderedElementsAre("--isolate", "--bind", "--trust-other-users"));
    EXPECT_THAT(offered({"run", "--isolate", ""}),
                UnorderedElementsAre("bubblewrap", "proot", "none"));
    EXPECT_THAT(offered({"run", "--isolate", "="}),
                UnorderedElementsAre("bubblewrap", "proot", "none"));
    EXPECT_THAT(offered({"run", "--isolate", "=", "p"}), ElementsAre("proot"));
    EXPECT_THAT(offered({"run", "--bind", "b"}), UnorderedElementsAre("board", "boards.txt"));
    EXPECT_THAT(offered({"run", "--bind", "=", "b"}), UnorderedElementsAre("board", "boards.txt"));
}

TEST_F(Completion, OffersBoardsToRunOn)
{
    for (const Words& words : {Words{"run", "b"}, Words{"run", "--isolate", "=", "none", "b"},
                               Words{"run", "--bind", "x", "b"}, Words{"run", "--", "b"}})
    {
        EXPECT_THAT(offered(words), ElementsAre("board"));
    }
}

TEST_F(Completion, OffersCommandsToRun)
{
    for (const Words& words :
         {Words{"run", "board", "fruit-p"}, Words{"run", "board", "--", "fruit-p"},
          Words{"run", "--isolate", "=", "proot", "--bind", "x", "board", "--", "fruit-p"}})
    {
        EXPECT_THAT(offered(words), ElementsAre("fruit-press"));
    }
}

TEST_F(Completion, LeavesTheArgumentsToTheCommandsOwnCompletion)
{
    EXPECT_THAT(offered({"run", "board", "--", "fruit", "p"}),
                UnorderedElementsAre("pear", "plum"));
    EXPECT_THAT(offered({"run", "board", "/usr/bin/fruit", "pl"}), ElementsAre("plum"));
    EXPECT_THAT(offered({"run", "board", "--", "vegetable", "x", "a"}), ElementsAre("apple"));
    EXPECT_THAT(offered({"run", "--isolate", "none", "board", "--", "bsp-board", "re"}),
                ElementsAre("restart"));
}

TEST_F(Completion, OffersFilesToOtherCommands)
{
    EXPECT_THAT(offered({"run", "board", "--", "true", "b"}),
                UnorderedElementsAre("board", "boards.txt"));
}

} // namespace
