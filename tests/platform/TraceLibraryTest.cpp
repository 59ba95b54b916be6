#include "ManyThreads.h"
#include "Program.h"
#include "Sanitizers.h"
#include "SystemCalls.h"
#include "TraceTest.h"

#include <array>
#include <ctime>

namespace
{

using namespace testing;
using namespace testsupport;

using TraceLibrary = TraceTest;

TEST_F(TraceLibrary, WritesALineForEachMessage)
{
    HvxTrace channel("a.channel", 3);
    write(channel, 1, "first");
    write(channel, 3, "");
    const std::string start = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{6}Z "
                              "a[.]channel[[]" +
                              std::to_string(::getpid()) + "[]] ";
    EXPECT_THAT(lines(), ElementsAre(MatchesRegex(start + "1 folder/file[.]cpp:42 first"),
                                     MatchesRegex(start + "3 folder/file[.]cpp:42 ")));
}

TEST_F(TraceLibrary, PutsAMessageTogetherFromItsPieces)
{
    HvxTrace channel("channel", 3);
    channel.beginLogMsg(1, Header);
    channel.logMsgData("ENTER name", 10);
    channel.logMsgData('(');
    channel.logMsgData("fd=7 and more", 4);
    channel.logMsgData(')');
    channel.endLogMsg();
    EXPECT_THAT(texts(), ElementsAre("ENTER name(fd=7)"));
}

TEST_F(TraceLibrary, KeepsTheMessagesOfTwoChannelsApart)
{
    HvxTrace outer("outer", 3);
    HvxTrace inner("inner", 3);
    outer.beginLogMsg(1, Header);
    outer.logMsgData('a');
    inner.beginLogMsg(1, Header);
    inner.logMsgData('x');
    outer.logMsgData('b');
    inner.logMsgData('y');
    outer.endLogMsg();
    inner.endLogMsg();
    EXPECT_THAT(texts(), ElementsAre("ab", "xy"));
}

TEST_F(TraceLibrary, DropsWhatCannotBeFormatted)
{
    GT_TraceRecord record{TraceRecordStartLevel, "record"};
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    GT_printf2(&record, 1, &Header, "%ls", noCharacter);
    GT_printf2(&record, 1, &Header, "next");
    EXPECT_THAT(texts(), ElementsAre("next"));
}

TEST_F(TraceLibrary, FormatsAsPrintf)
{
    GT_TraceRecord record{TraceRecordStartLevel, "record"};
    GT_printf2(&record, 1, &Header, "%s(%d, %p, %d) called\n", "Led_write", -3,
               static_cast<void*>(nullptr), 12);
    GT_printf2(&record, 1, &Header, "100%%");
    EXPECT_THAT(texts(), ElementsAre("Led_write(-3, (nil), 12) called", "100%"));
}

TEST_F(TraceLibrary, KeepsMessagesOfManyThreadsWhole)
{
    HvxTrace channel("channel", 3);
    inManyThreads(8, [&channel](std::size_t number) {
        const char letter = "abcdefgh"[number];
        GT_TraceRecord record{TraceRecordStartLevel, "channel"};
        for (int i = 0; i < 50; ++i) {
            write(channel, 1, std::string(200, letter));
            GT_printf2(&record, 1, &Header, "%s\n", std::string(300, letter).c_str());
        }
    });
    EXPECT_THAT(lines(), SizeIs(800));
    for (const std::string& text : texts()) {
        EXPECT_EQ(text, std::string(text.size(), text.at(0)));
        EXPECT_TRUE(text.size() == 200 || text.size() == 300) << text;
    }
}

TEST_F(TraceLibrary, KeepsMessagesOfManyProcessesWhole)
{
    HvxTrace channel("channel", 3);
    std::vector<pid_t> processes;
    for (char letter = 'a'; letter < 'i'; ++letter) {
        processes.push_back(startCopy([&channel, letter] {
            for (int i = 0; i < 50; ++i) {
                write(channel, 1, std::string(3000, letter));
            }
            return true;
        }));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(waitFor(process), 0);
        EXPECT_THAT(lines(), Contains(HasSubstr("channel[" + std::to_string(process) + "] 1 ")));
    }
    EXPECT_THAT(lines(), SizeIs(400));
    for (const std::string& text : texts()) {
        EXPECT_EQ(text, std::string(3000, text.at(0)));
    }
}

TEST_F(TraceLibrary, CanBeUsedByAProcessForkedAtAnyMoment)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator itself can hang in a process forked beside other threads";
    }
    if (!canForkBesideThreads()) {
        GTEST_SKIP() << NoForkBesideThreads;
    }
    EXPECT_EQ(programAt(TRACE_CLIENT, {"forks"}).run(), answer());
    int forked = 0;
    for (const std::string& line : lines()) {
        forked += line.find(" forked[") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(forked, 100);
}

TEST_F(TraceLibrary, TellsTheTime)
{
    constexpr std::time_t Day = 24 * 60 * 60;
    HvxTrace channel("channel", 3);
    // Every day of four years with a leap day, then one day of each month for a long time.
    std::vector<std::time_t> times;
    for (std::time_t i = 0; i < 4 * 366; ++i) {
        times.push_back(1700000000 + i * Day + i);
    }
    for (std::time_t i = 0; i < 800; ++i) {
        times.push_back(i * 31 * Day + Day - 1);
    }
    std::vector<std::string> expected;
    for (const std::time_t time : times) {
        systemcalls::hooks().clock_gettime = [time](clockid_t /*clock*/, timespec* now) {
            *now = {time, 1002003};
            return 0;
        };
        write(channel, 1, "text");
        std::tm utc{};
        ::gmtime_r(&time, &utc);
        std::array<char, 64> text{};
        std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.001002Z ", &utc);
        expected.emplace_back(text.data());
    }
    systemcalls::hooks() = {};
    const auto written = lines();
    ASSERT_EQ(written.size(), expected.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
        EXPECT_THAT(written[i], StartsWith(expected[i]));
    }
}

} // namespace
