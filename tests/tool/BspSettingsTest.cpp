#include "BspTool.h"
#include "Files.h"
#include "TemporaryDirectory.h"

#include <algorithm>

namespace
{

using bsptool::bsp;
using bsptool::expectError;
using bsptool::expectSilence;
using testsupport::Outcome;

class Setting : public testing::Test
{
protected:
    /** Runs a function on a board whose store is as told. */
    Outcome run(std::vector<std::string> arguments, const std::string& store = "")
    {
        return bsp(std::move(arguments),
                   {{"FAKE_BOARD_STORE", store}, {"FAKE_BOARD_STORE_CALLS", m_calls}})
            .run();
    }

    /** What the last run told the store, with the value's NUL as a dot. */
    std::string calls() const
    {
        std::string text = testsupport::readFile(m_calls);
        std::replace(text.begin(), text.end(), '\0', '.');
        return text;
    }

private:
    testsupport::TemporaryDirectory m_directory;
    std::string m_calls = m_directory.file("calls");
};

TEST_F(Setting, SetRadiolinkModeStoresTheModeAndPrintsNothing)
{
    expectSilence(run({"setRadiolinkMode", "Rl4"}));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl4\n");
    expectSilence(run({"setRadiolinkMode", "Rl5"}));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl5\n");
}

TEST_F(Setting, SetRadiolinkModeDoesNotLookAtTheResult)
{
    expectSilence(run({"setRadiolinkMode", "Rl5"}, "refuses"));
    EXPECT_EQ(calls(), "set RadiolinkMode mode.Rl5\n");
}

TEST_F(Setting, SetRadiolinkModeRefusesEverythingElse)
{
    const std::string error = "Error: valid arguments are <Rl4 | Rl5>";
    for (const char* mode : {"rl4", "RL5", "", "Rl", "Rl45", "Rl4 ", " Rl5", "0", "1", "EndOfList"})
    {
        expectError(run({"setRadiolinkMode", mode}), error);
        EXPECT_EQ(calls(), "");
    }
    expectError(run({"setRadiolinkMode"}), error);
    expectError(run({"setRadiolinkMode", "Rl4", "x"}), error);
    EXPECT_EQ(calls(), "");
}

TEST_F(Setting, ClearRadiolinkModeRemovesTheModeAndPrintsNothing)
{
    expectSilence(run({"clearRadiolinkMode"}));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
    expectSilence(run({"clearRadiolinkMode", "Rl4", "x"}));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
}

TEST_F(Setting, ClearRadiolinkModeDoesNotLookAtTheResult)
{
    expectSilence(run({"clearRadiolinkMode"}, "refuses"));
    EXPECT_EQ(calls(), "clear RadiolinkMode\n");
}

TEST_F(Setting, TrafClientModeIsNeitherSetNorCleared)
{
    for (const char* function : {"setTrafClientMode", "clearTrafClientMode"}) {
        expectSilence(run({function}));
        EXPECT_EQ(calls(), "");
        expectSilence(run({function, "Lads", "x", "y"}, "throws"));
        EXPECT_EQ(calls(), "");
    }
}

} // namespace
