/**
 * @file
 * @brief What the store says in the trace, where its callers get nothing but false.
 */
#include "Board.h"
#include "Program.h"

#include <gmock/gmock.h>

namespace
{

using testing::MatchesRegex;
using testsupport::Board;

class ConfigTrace : public testing::Test
{
protected:
    /** What the client writes to standard error. */
    static std::string errorsOf(const std::vector<std::string>& arguments,
                                const std::map<std::string, std::string>& environment)
    {
        testsupport::Program program = testsupport::programAt(BOARD_CLIENT, arguments);
        program.environment = environment;
        program.environment.emplace("QELTRACE_OUTPUT", "stderr");
        return program.run().err;
    }

    /** The line of a message; a compiler cache names sources from the build folder. */
    static std::string line(const std::string& level, const std::string& source,
                            const std::string& text)
    {
        return "[^ ]+Z bsp\\.config\\[[0-9]+\\] " + level + " (\\.\\./)*platform/linux/config/" +
               source + ":[0-9]+ " + text + "\n";
    }
    static std::string failure(const std::string& text)
    {
        return line("1", "NxuConfig\\.cpp", text);
    }

    Board board;
};

TEST_F(ConfigTrace, SaysWhyAValueIsNotSet)
{
    const std::string missing = board.file("missing");
    EXPECT_THAT(errorsOf({"set", "key", "value"}, {{"BSP_BOARD_DIR", missing}}),
                MatchesRegex(
                    failure("set\\(key\\) failed: cannot write the configuration store " + missing +
                            "/settings: cannot open the directory: No such file or directory")));
    EXPECT_THAT(errorsOf({"set", "", "value"}, {}),
                MatchesRegex(failure("set\\(\\) failed: cannot write the configuration store " +
                                     board.file("settings") + ": an empty key")));
}

TEST_F(ConfigTrace, SaysWhyAKeyIsNotCleared)
{
    board.write("settings", "key=value\nword\n");
    EXPECT_THAT(
        errorsOf({"clear", "key"}, {}),
        MatchesRegex(failure("clear\\(key\\) failed: cannot write the configuration store " +
                             board.file("settings") + ": line 2: not of the form key=value")));
}

TEST_F(ConfigTrace, NamesTheFileOnceForThoseWhoWantToKnow)
{
    EXPECT_THAT(errorsOf({"set", "key", "value", "get", "key", "get", "key", "clear", "key"},
                         {{"QELTRACE_LEVEL", "bsp.config=5"}}),
                MatchesRegex(line("5", "ConfigStore\\.cpp",
                                  "the settings are those of " + board.file("settings"))));
}

TEST_F(ConfigTrace, IsQuietOnStandardErrorUnlessItIsTold)
{
    ::unsetenv("QELTRACE_OUTPUT");
    EXPECT_EQ(testsupport::programAt(BOARD_CLIENT, {"set", "", "value"}).run().err, "");
    EXPECT_EQ(errorsOf({"set", "key", "value", "get", "key"}, {}), "");
}

} // namespace
