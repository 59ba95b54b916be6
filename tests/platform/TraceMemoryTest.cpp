#include "Allocations.h"
#include "Program.h"
#include "TraceTest.h"

#include <climits>
#include <optional>

namespace
{

using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::IsNull;
using testsupport::Header;
using testsupport::untilItIsEnough;

const std::string Name = "a.channel.with.a.long.name";
const std::string Text = "a text that is longer than what a string holds without any memory";

using TraceMemory = testsupport::TraceTest;

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
    testsupport::failAllocations(LONG_MAX);
    channel.emplace(Name, 3);
    testsupport::failAllocations(0);
    EXPECT_THAT(channel->m_state, IsNull());
    write(*channel, 1, Text);
    EXPECT_THAT(lines(), IsEmpty());
    HvxTrace later(Name, 3);
    write(later, 1, Text);
    EXPECT_THAT(texts(), ElementsAre(Text));
}

TEST_F(TraceMemory, MayBeMissingForTheSystemLogAndForStandardError)
{
    for (const char* output : {"syslog", "stderr"}) {
        const pid_t process = ::fork();
        if (process == 0) {
            setOutput(output);
            GT_TraceRecord record{TraceRecordStartLevel, Name.c_str()};
            testing::internal::CaptureStderr();
            untilItIsEnough([&] { GT_printf2(&record, 1, &Header, "%s\n", Text.c_str()); });
            ::_exit(0);
        }
        EXPECT_EQ(testsupport::waitFor(process), 0) << output;
    }
}

} // namespace
