#include "ErrnoText.h"
#include "GroupedDigits.h"
#include "GtMessage.h"
#include "HvxMessage.h"
#include "MessageText.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>
#include <thread>

namespace
{

using namespace testing;
using namespace recordingtrace;
using trace::MessageText;

GT_TraceRecord record{TraceRecordStartLevel, "test.gt"};

int timesPrinted = 0;

void printNumber(HvxTraceLevel level)
{
    TRACE_PRINTF(record, level, "%s(): %d\n", __func__, ++timesPrinted);
}

TEST(GtMessage, HandsTheFormatAndItsValuesToTheLibrary)
{
    TRACE_PRINTF(record, trace::Notice, "%s(%d, %s) called\n", __func__, 5, "text");
    EXPECT_THAT(takeLines(), ElementsAre("test.gt 3 TestBody(5, text) called\n"));
}

TEST(GtMessage, ReachesTheLibraryOnceWhateverTheLevel)
{
    recordingtrace::setLevel("test.gt", 3);
    EXPECT_EQ(record.level, 0x1003U);
    printNumber(6);
    EXPECT_EQ(timesPrinted, 1) << "the library decides about the first message";
    EXPECT_EQ(record.level, 3U);
    printNumber(6);
    EXPECT_EQ(timesPrinted, 1);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(GtMessage, ComparesTheLevelAsUnsigned)
{
    recordingtrace::setLevel("test.gt", 0x80000000U);
    printNumber(7);
    printNumber(7);
    EXPECT_EQ(timesPrinted, 2);
}

TEST(GtMessage, KeepsErrnoInTheValuesAndForTheCaller)
{
    errno = ENOENT;
    TRACE_PRINTF(record, trace::Error, "%s: %d\n", __func__, errno);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_THAT(takeLines(), ElementsAre("test.gt 1 TestBody: 2\n"));
}

TEST(GtMessage, CarriesItsSite)
{
    TRACE_PRINTF(record, trace::Error, "%s\n", __func__);
    const auto messages = recordingtrace::takeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_STREQ(messages[0].header->file, "tests/trace/MessagesTest.cpp");
    EXPECT_STREQ(messages[0].header->function, "TestBody");
}

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
    setActive("test.hvx", false);
    writeNumber(1);
    TRACE_ENTER(channel);
    TRACE_ENTER_WITH(channel, evaluated());
    EXPECT_EQ(timesEvaluated, 0);
    setActive("test.hvx", true);
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
    EXPECT_STREQ(messages[0].header->file, "tests/trace/MessagesTest.cpp");
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

template <typename... Values> std::string textOf(const Values&... values)
{
    MessageText text;
    (text << ... << values);
    return std::string(text.view());
}

TEST(MessageText, TakesTexts)
{
    EXPECT_EQ(textOf("a", std::string("b\0c", 3), 'd', std::string_view("ef").substr(1)),
              std::string("ab\0cdf", 6));
    const char* none = nullptr;
    EXPECT_EQ(textOf("a", none, "b", ""), "ab");
    EXPECT_EQ(textOf(syscalls::errnoText(ENOENT), syscalls::errnoText(12345)),
              "No such file or directoryUnknown error 12345");
}

TEST(MessageText, TakesNumbers)
{
    EXPECT_EQ(textOf(0, ' ', -1, ' ', INT_MIN, ' ', UINT_MAX), "0 -1 -2147483648 4294967295");
    EXPECT_EQ(textOf(INT64_MIN, ' ', INT64_MAX, ' ', UINT64_MAX),
              "-9223372036854775808 9223372036854775807 18446744073709551615");
    EXPECT_EQ(textOf(short{-7}, std::size_t{8}), "-78");
}

TEST(MessageText, GrowsWithWhatItTakes)
{
    for (const std::size_t length : {511U, 512U, 513U, 1023U, 1024U, 1025U, 100000U}) {
        const std::string first(length, 'a');
        EXPECT_EQ(textOf(first), first);
        EXPECT_EQ(textOf(first, "bc", first, 10), first + "bc" + first + "10");
    }
    MessageText text;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        text << 'x';
        expected += 'x';
    }
    EXPECT_EQ(text.view(), expected);
    EXPECT_FALSE(text.isLost());
}

TEST(MessageText, WritesNumbersTheSameInAllLocales)
{
    const testsupport::GroupedDigits digits;
    EXPECT_EQ(textOf(1009, ' ', 1234567U, ' ', -1000000000L), "1009 1234567 -1000000000");
}

} // namespace
