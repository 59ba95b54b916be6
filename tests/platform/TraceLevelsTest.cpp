#include "Program.h"
#include "TraceTest.h"

#include <cstring>

namespace
{

using namespace testing;
using testsupport::Header;

using TraceLevels = testsupport::TraceTest;
using TraceRecords = testsupport::TraceTest;

TEST_F(TraceLevels, AreThreeByDefault)
{
    HvxTrace channel("channel", 3);
    EXPECT_EQ(channel.m_state->level, 3U);
    write(channel, 4, "too much");
    write(channel, 3, "enough");
    GT_TraceRecord record{TraceRecordStartLevel, "record"};
    GT_printf2(&record, 4, &Header, "too much\n");
    GT_printf2(&record, 3, &Header, "enough\n");
    EXPECT_THAT(texts(), ElementsAre("enough", "enough"));
}

TEST_F(TraceLevels, AreTheThirdWordOfTheState)
{
    setLevels("channel=6");
    const HvxTrace channel("channel", 3);
    uint32_t word = 0;
    std::memcpy(&word, reinterpret_cast<const char*>(channel.m_state) + 8, sizeof word);
    EXPECT_EQ(word, 6U);
}

TEST_F(TraceLevels, AreSetByTheChannelsName)
{
    setLevels("bsp.core=7,Bsp.WarmDatabase=5,a=b=4");
    EXPECT_EQ(levelOf("bsp.core"), 7U);
    EXPECT_EQ(levelOf("Bsp.WarmDatabase"), 5U);
    EXPECT_EQ(levelOf("a=b"), 4U);
    expectLevel(3, {"bsp.cor", "bsp.core2", "xbsp.core", "bsp", "", "bspxcore"});
}

TEST_F(TraceLevels, DoNotDependOnCase)
{
    setLevels("BSP.core=7,bsp.warm*=5");
    EXPECT_EQ(levelOf("bsp.core"), 7U);
    EXPECT_EQ(levelOf("Bsp.CORE"), 7U);
    EXPECT_EQ(levelOf("Bsp.WarmDatabase"), 5U);
}

TEST_F(TraceLevels, AreSetByPatterns)
{
    setLevels("bsp.*=7,?ed=5,*.end=6,*mid*=2,a.[0-9]=4,x\\*=1");
    expectLevel(7, {"bsp.core", "Bsp.WarmDatabase", "bsp."});
    expectLevel(5, {"led", "LED"});
    expectLevel(6, {"the.end"});
    expectLevel(2, {"amidst", "mid", "/a/mid/b"});
    expectLevel(4, {"a.7"});
    expectLevel(1, {"x\\y"});
    expectLevel(3, {"bsp", "absp.core", "ed", "sled", "the.end.", "a.b", "x*", ""});
}

TEST_F(TraceLevels, AreThoseOfTheMostExactPattern)
{
    // A name before patterns, "*" after them, in any order.
    for (const char* levels : {"bsp.core=7,bsp.*=5,*=2", "*=2,bsp.*=5,bsp.core=7"}) {
        EXPECT_TRUE(testsupport::holdsInCopy([levels] {
            setLevels(levels);
            return levelOf("bsp.core") == 7 && levelOf("bsp.led") == 5 && levelOf("other") == 2;
        })) << levels;
    }
}

TEST_F(TraceLevels, AreSetForAllOthersByAStar)
{
    setLevels("*=6,bsp.led=0");
    EXPECT_EQ(levelOf("bsp.core"), 6U);
    EXPECT_EQ(levelOf("bsp.led"), 0U);
    GT_TraceRecord record{TraceRecordStartLevel, "bsp.led"};
    GT_printf2(&record, 1, &Header, "silent\n");
    EXPECT_EQ(record.level, 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TraceLevels, AreTheLastOnesSet)
{
    setLevels("a=1,*=2,p*=6,pq*=4,a=4,A=5,*=7");
    EXPECT_EQ(levelOf("a"), 5U);
    EXPECT_EQ(levelOf("b"), 7U);
    EXPECT_EQ(levelOf("pq"), 4U);
    EXPECT_EQ(levelOf("p"), 6U);
}

TEST_F(TraceLevels, AreReportedOnceAndIgnoredWhenTheyAreBad)
{
    setLevels("bsp.core,=4,a=,b=8,c=-1,d=07,e=x, f=5,g=6,*=1\n2");
    testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i) {
        expectLevel(3, {"bsp.core", "", "a", "b", "c", "d", "e", "f", " f"});
        EXPECT_EQ(levelOf("g"), 6U);
    }
    const std::string form = " in QELTRACE_LEVEL: not of the form CHANNEL=LEVEL\n";
    const std::string level = " in QELTRACE_LEVEL: the level is not one of 0 to 7\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "qeltrace: ignoring 'bsp.core'" + form + "qeltrace: ignoring '=4'" + form +
                  "qeltrace: ignoring 'a='" + level + "qeltrace: ignoring 'b=8'" + level +
                  "qeltrace: ignoring 'c=-1'" + level + "qeltrace: ignoring 'd=07'" + level +
                  "qeltrace: ignoring 'e=x'" + level + "qeltrace: ignoring ' f=5'" + form +
                  "qeltrace: ignoring '*=1\\x0A2'" + level);
}

TEST_F(TraceLevels, AreThoseOfTheStart)
{
    setLevels("a=5");
    EXPECT_EQ(levelOf("a"), 5U);
    setLevels("a=6,b=6");
    EXPECT_EQ(levelOf("a"), 5U);
    EXPECT_EQ(levelOf("b"), 3U);
}

TEST_F(TraceLevels, CanBeChangedWhileTheProgramRuns)
{
    HvxTrace channel("channel", 3);
    channel.m_state->level = 5;
    write(channel, 5, "now");
    channel.m_state->level = 4;
    write(channel, 5, "no longer");
    EXPECT_THAT(texts(), ElementsAre("now"));
    EXPECT_EQ(levelOf("channel"), 4U);
}

TEST_F(TraceRecords, AreSettledByTheirFirstMessage)
{
    setLevels("loud=7");
    GT_TraceRecord quiet{TraceRecordStartLevel, "quiet"};
    GT_TraceRecord loud{TraceRecordStartLevel, "loud"};
    EXPECT_EQ(quiet.level, 0x1003U);
    GT_printf2(&quiet, 6, &Header, "not written\n");
    GT_printf2(&loud, 6, &Header, "written\n");
    EXPECT_EQ(quiet.level, 3U);
    EXPECT_EQ(loud.level, 7U);
    EXPECT_THAT(texts(), ElementsAre("written"));
}

TEST_F(TraceRecords, ShareTheChannelOfTheirName)
{
    setLevels("same=6");
    const HvxTrace channel("same", 3);
    channel.m_state->level = 2;
    GT_TraceRecord record{TraceRecordStartLevel, "same"};
    GT_printf2(&record, 3, &Header, "not written\n");
    EXPECT_EQ(record.level, 2U);
    EXPECT_THAT(lines(), IsEmpty());
}

} // namespace
