#include "Allocations.h"
#include "Board.h"
#include "NxuConfig.h"
#include "Program.h"
#include "TraceTest.h"

#include <gmock/gmock.h>

#include <climits>
#include <exception>
#include <functional>
#include <optional>

namespace
{

using os::bsp::NxuConfig;
using namespace testing;
using namespace testsupport;

// All are longer than what a string holds without any memory.
const std::string Key = "the key of a setting that is to be changed";
const std::string Comment = "# a comment that is longer than other lines of this file are\n";
const std::string Other = "another setting=with a value that nobody asks for\n";
const std::string Value = "a value that is not short either";
const std::string NewValue = "a value that takes the place of the former";
const std::string Before = Comment + Key + '=' + Value + '\n' + Other;

class ConfigMemory : public Test
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

    const Board board;
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

const std::string Name = "a.channel.with.a.long.name";
const std::string Text = "a text that is longer than what a string holds without any memory";

using TraceMemory = TraceTest;

TEST_F(TraceMemory, MayBeMissingForAPrintedMessage)
{
    setLevels("bsp.core=5,a.channel.with.a.long.*=6,*=2");
    GT_TraceRecord record{TraceRecordStartLevel, Name.c_str()};
    const long needed =
        untilItIsEnough([&] { GT_printf2(&record, 6, &Header, "%s\n", Text.c_str()); });
    EXPECT_THAT(needed, Gt(5));
    EXPECT_THAT(texts(), ElementsAre(Text));
    EXPECT_EQ(record.level, 6U);
    EXPECT_EQ(levelOf("bsp.core"), 5U);
    EXPECT_EQ(levelOf("other"), 2U);
}

TEST_F(TraceMemory, MayBeMissingForAMessageOfPieces)
{
    HvxTrace channel(Name, 3);
    const long needed = untilItIsEnough([&] {
        channel.beginLogMsg(1, Header);
        channel.logMsgData(Text.data(), static_cast<unsigned int>(Text.size()));
        channel.logMsgData('.');
        channel.logMsgData(Text.data(), static_cast<unsigned int>(Text.size()));
        channel.endLogMsg();
    });
    EXPECT_THAT(needed, Gt(5));
    EXPECT_THAT(texts(), ElementsAre(Text + '.' + Text));
}

TEST_F(TraceMemory, MayBeMissingForAChannel)
{
    std::optional<HvxTrace> channel;
    failAllocations(LONG_MAX);
    channel.emplace(Name, 3);
    failAllocations(0);
    EXPECT_THAT(channel->m_state, IsNull());
    write(*channel, 1, Text);
    EXPECT_THAT(lines(), IsEmpty());
    HvxTrace later(Name, 3);
    write(later, 1, Text);
    EXPECT_THAT(texts(), ElementsAre(Text));
}

TEST_F(TraceMemory, OfAChannelIsNotTakenTwice)
{
    // As if another thread made the channel while this one does.
    static std::optional<HvxTrace> other;
    testsupport::observeAllocations([](std::size_t) {
        testsupport::observeAllocations(nullptr);
        other.emplace(Name, 3);
    });
    const HvxTrace channel(Name, 3);
    testsupport::observeAllocations(nullptr);
    ASSERT_TRUE(other);
    EXPECT_EQ(channel.m_state, other->m_state);
}

TEST_F(TraceMemory, MayBeMissingForTheSystemLogAndForStandardError)
{
    for (const char* output : {"syslog", "stderr"}) {
        EXPECT_TRUE(holdsInCopy([output] {
            setOutput(output);
            GT_TraceRecord record{TraceRecordStartLevel, Name.c_str()};
            testing::internal::CaptureStderr();
            untilItIsEnough([&] { GT_printf2(&record, 1, &Header, "%s\n", Text.c_str()); });
            return true;
        })) << output;
    }
}

} // namespace
