/**
 * @file
 * @brief How many instructions a message takes that nobody wants, exactly.
 */
#include "DisabledMessages.h"
#include "RecordingTrace.h"
#include "SteppedProcess.h"

#include <gtest/gtest.h>

#include <iostream>

namespace
{

using disabledmessages::Site;

HvxTrace channel("test.channel", 3);
GT_TraceRecord record{3, "test.record"};

std::size_t instructionsOf(void (*write)(HvxTrace&, GT_TraceRecord&, int))
{
    return faults::runStepwise({{}, [write] { write(channel, record, 5); }}, [](bool) {});
}

TEST(DisabledMessage, TakesAsManyInstructionsAsEntered)
{
    recordingtrace::setLevel("test.channel", 3);
    const std::size_t nothing = instructionsOf(disabledmessages::writeNothing);
    for (const Site& site : disabledmessages::Sites) {
        const auto count = static_cast<long>(instructionsOf(site.write) - nothing);
        std::cout << "a disabled " << site.name << ": " << count << " instructions\n";
        EXPECT_EQ(count, site.instructions) << site.name;
    }
    EXPECT_TRUE(recordingtrace::takeLines().empty());
}

} // namespace
