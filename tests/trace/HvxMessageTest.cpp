#include "HvxMessage.h"
#include "ErrnoText.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <thread>

namespace
{

using recordingtrace::takeLines;
using recordingtrace::takeMessages;
using testing::ElementsAre;
using testing::IsEmpty;

HvxTrace channel{"test.hvx", 3};

int timesEvaluated = 0;

int evaluated()
{
    return ++timesEvaluated;
}

void writeNumber(HvxTraceLevel level)
{
    TRACE_MESSAGE(channel, level, "number " << evaluated());
}

TEST(HvxMessage, NamesTheFunctionInFrontOfTheText)
{
    TRACE_MESSAGE(channel, trace::Error, "failed. Returned " << -5);
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 1 TestBody(): failed. Returned -5"));
}

TEST(HvxMessage, NamesALambdaByItsOperator)
{
    [] { TRACE_MESSAGE(channel, trace::Error, "text"); }();
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 1 operator()(): text"));
}

TEST(HvxMessage, WritesTheEntryOfAFunction)
{
    TRACE_ENTER(channel);
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 6 ENTER TestBody()"));
}

TEST(HvxMessage, WritesTheParenthesesOfAnEntrysArgumentOneByOne)
{
    TRACE_ENTER_WITH(channel, "fd=" << 7);
    const auto messages = takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].level, 6U);
    EXPECT_THAT(messages[0].pieces, ElementsAre("ENTER ", "TestBody", "(", "fd=7", ")"));
}

TEST(HvxMessage, IsWrittenFromTheChannelsLevelDown)
{
    recordingtrace::setLevel("test.hvx", 4);
    writeNumber(4);
    writeNumber(5);
    recordingtrace::setLevel("test.hvx", 5);
    writeNumber(5);
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 4 writeNumber(): number 1",
                                         "test.hvx 5 writeNumber(): number 2"));
}

TEST(HvxMessage, IsNotEvaluatedBelowTheLevel)
{
    recordingtrace::setLevel("test.hvx", 0);
    errno = ENOENT;
    writeNumber(1);
    TRACE_ENTER(channel);
    TRACE_ENTER_WITH(channel, evaluated());
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(timesEvaluated, 0);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(HvxMessage, IsNotEvaluatedOnAnInactiveChannel)
{
    recordingtrace::setActive("test.hvx", false);
    writeNumber(1);
    TRACE_ENTER(channel);
    TRACE_ENTER_WITH(channel, evaluated());
    EXPECT_EQ(timesEvaluated, 0);
    recordingtrace::setActive("test.hvx", true);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(HvxMessage, KeepsErrnoInTheTextAndForTheCaller)
{
    errno = ENOENT;
    TRACE_MESSAGE(channel, trace::Error,
                  "errno is " << errno << ", " << syscalls::errnoText(errno));
    EXPECT_EQ(errno, ENOENT);
    TRACE_ENTER(channel);
    EXPECT_EQ(errno, ENOENT);
    TRACE_ENTER_WITH(channel, errno);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_THAT(takeLines(),
                ElementsAre("test.hvx 1 TestBody(): errno is 2, No such file or directory",
                            "test.hvx 6 ENTER TestBody()", "test.hvx 6 ENTER TestBody(2)"));
}

TEST(HvxMessage, KeepsEveryByteOfAText)
{
    const std::string text("a\0b", 3);
    TRACE_MESSAGE(channel, trace::Error, text);
    TRACE_ENTER_WITH(channel, text);
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 1 TestBody(): " + text,
                                         "test.hvx 6 ENTER TestBody(" + text + ")"));
}

TEST(HvxMessage, CanBeWrittenPieceByPiece)
{
    static constexpr HvxTraceHeader header{"file", 1, "function"};
    channel.beginLogMsg(trace::Error, header);
    trace::logMsgData(channel, "text, ");
    trace::logMsgData(channel, std::string("a\0b", 3));
    channel.endLogMsg();
    EXPECT_THAT(takeLines(), ElementsAre("test.hvx 1 text, " + std::string("a\0b", 3)));
}

TEST(HvxMessage, FormatsBeforeItBegins)
{
    // The recorder fails when a message begins inside another.
    const auto logs = [] {
        TRACE_MESSAGE(channel, trace::Error, "inner");
        return "outer";
    };
    TRACE_MESSAGE(channel, trace::Error, logs());
    EXPECT_THAT(takeLines(),
                ElementsAre("test.hvx 1 operator()(): inner", "test.hvx 1 TestBody(): outer"));
}

TEST(HvxMessage, HasOneHeaderForEachSite)
{
    for (int i = 0; i < 2; ++i) {
        TRACE_MESSAGE(channel, trace::Error, "first");
        TRACE_MESSAGE(channel, trace::Error, "second");
    }
    const auto messages = takeMessages();
    ASSERT_EQ(messages.size(), 4U);
    EXPECT_EQ(messages[0].header, messages[2].header);
    EXPECT_EQ(messages[1].header, messages[3].header);
    EXPECT_EQ(messages[0].header->line + 1, messages[1].header->line);
    EXPECT_STREQ(messages[0].header->file, "tests/trace/HvxMessageTest.cpp");
    EXPECT_STREQ(messages[0].header->function, "TestBody");
}

TEST(HvxMessage, KeepsTheMessagesOfThreadsApart)
{
    const auto write = [](char letter) {
        for (int i = 0; i < 200; ++i) {
            TRACE_MESSAGE(channel, trace::Result, std::string(3, letter));
        }
    };
    std::thread a(write, 'a');
    std::thread b(write, 'b');
    a.join();
    b.join();
    int lines = 0;
    for (const std::string& line : takeLines()) {
        EXPECT_TRUE(line == "test.hvx 4 operator()(): aaa" ||
                    line == "test.hvx 4 operator()(): bbb")
            << line;
        ++lines;
    }
    EXPECT_EQ(lines, 400);
}

} // namespace
