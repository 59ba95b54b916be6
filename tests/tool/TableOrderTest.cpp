#include "Program.h"

#include <gtest/gtest.h>

namespace
{

TEST(TableOrder, NamesComeBeforeCommands)
{
    testsupport::Program program{};
    program.path = BSP_TEST_TABLE_ORDER_TOOL;
    program.name = "bsp";
    program.arguments = {"clearTrafClientMode"};
    const testsupport::Outcome outcome = program.run();
    EXPECT_EQ(outcome.err, "command table: streams yes, name tables yes\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 0);
}

} // namespace
