#include "Allocations.h"
#include "RState.h"
#include "RecordingTrace.h"

#include <gtest/gtest.h>

namespace
{

using testsupport::countedAllocations;

TEST(RStateAllocation, TakesNoneFromTheHeapWithTheChannelOff)
{
    recordingtrace::setLevel("bsp.rstate", 0);
    char text[RState::MaxRStateLen] = "R12ZZZZ999";
    RState_compare(text, text); // the first message settles the level

    const long before = countedAllocations();
    const int result = RState_compare(text, "R12ZZZZ998");
    RState_increment(text, sizeof text, IncrementType::Auto);
    RState_increment2(text, sizeof text, "Major");
    RState_fromVersion(text, 12, 107859, 999);
    RState_compare("no R-state", "R0A");
    const long after = countedAllocations();

    EXPECT_EQ(after, before);
    EXPECT_EQ(result, 1);
    EXPECT_STREQ(text, "R12ZZZZ999");
    const std::string counted(100, 'x');
    EXPECT_GT(countedAllocations(), after) << "allocations are counted";
}

} // namespace
