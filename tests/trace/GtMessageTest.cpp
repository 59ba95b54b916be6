#include "GtMessage.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_STREQ(messages[0].header->file, "tests/trace/GtMessageTest.cpp");
    EXPECT_STREQ(messages[0].header->function, "TestBody");
}

} // namespace
