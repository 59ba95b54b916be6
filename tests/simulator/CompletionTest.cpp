#include "SimulatorTest.h"

#include <filesystem>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

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
        testsupport::Program bash{};
        bash.path = "bash";
        bash.foreign = true;
        bash.directory = fs::path(file("board")).parent_path();
        bash.arguments = {"--norc", "--noprofile", "-c", Script, BSP_TEST_COMPLETION};
        bash.arguments.insert(bash.arguments.end(), words.begin(), words.end());
        const testsupport::Outcome outcome = bash.run();
        EXPECT_EQ(outcome.err, "");
        std::istringstream lines(outcome.out);
        std::vector<std::string> replies;
        for (std::string line; std::getline(lines, line);) {
            replies.push_back(line);
        }
        return replies;
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
