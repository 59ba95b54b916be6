#include "Board.h"
#include "NxuConfig.h"
#include "Allocations.h"

#include <gmock/gmock.h>

#include <exception>
#include <functional>

namespace
{

using os::bsp::NxuConfig;
using testing::AnyOf;
using testing::Gt;
using testsupport::readFile;
using testsupport::untilItIsEnough;

// All are longer than what a string holds without any memory.
const std::string Key = "the key of a setting that is to be changed";
const std::string Comment = "# a comment that is longer than other lines of this file are\n";
const std::string Other = "another setting=with a value that nobody asks for\n";
const std::string Value = "a value that is not short either";
const std::string NewValue = "a value that takes the place of the former";
const std::string Before = Comment + Key + '=' + Value + '\n' + Other;

class ConfigMemory : public testing::Test
{
protected:
    ConfigMemory()
    {
        ::setenv("QELTRACE_OUTPUT", "none", 1);
        board.write("settings", Before);
    }

    /** Does the change, with more and more memory; until it is done, nothing must have changed. */
    void expectAllOrNothing(const std::function<bool()>& change, const std::string& after)
    {
        bool isDone = false;
        const long needed = untilItIsEnough([&] { isDone = change(); },
                                            [&] {
                                                EXPECT_EQ(readFile(board.file("settings")),
                                                          isDone ? after : Before);
                                                EXPECT_FALSE(board.has("settings.lock"));
                                                EXPECT_FALSE(board.has("settings.new"));
                                            });
        EXPECT_TRUE(isDone);
        EXPECT_THAT(needed, Gt(20));
    }

    const testsupport::Board board;
    NxuConfig config;
};

TEST_F(ConfigMemory, MayBeMissingForAQuestion)
{
    std::string answer;
    const long needed = untilItIsEnough(
        [&] {
            try {
                answer = config.get(Key);
            } catch (const std::exception&) {
                answer = "thrown";
            }
        },
        [&] {
            EXPECT_THAT(answer, AnyOf("thrown", Value));
            // What was read of a file that has not changed since is not read again.
            board.write("settings", Before);
        });
    EXPECT_EQ(answer, Value);
    EXPECT_THAT(needed, Gt(10));
}

TEST_F(ConfigMemory, MayBeMissingForASetting)
{
    expectAllOrNothing([&] { return config.set(Key, NewValue); },
                       Comment + Key + '=' + NewValue + '\n' + Other);
}

TEST_F(ConfigMemory, MayBeMissingForARemoval)
{
    expectAllOrNothing([&] { return config.clear(Key); }, Comment + Other);
}

} // namespace
