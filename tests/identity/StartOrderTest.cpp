/**
 * @file
 * @brief The order in which the modules' objects are made in a program that takes them from the
 * archive.
 */
#include "Files.h"
#include "Program.h"

#include <gmock/gmock.h>

namespace
{

using testing::UnorderedElementsAre;

std::vector<std::string> channelsOf(const char* path)
{
    testsupport::Program program{};
    program.path = path;
    return testsupport::linesOf(program.run().out);
}

TEST(StartOrder, InAProgramThatUsesOneFunction)
{
    EXPECT_THAT(channelsOf(BSP_TEST_START_ORDER_OF_ONE),
                UnorderedElementsAre("bsp.core: streams yes, tables yes"));
}

TEST(StartOrder, InAProgramThatUsesAllChannels)
{
    EXPECT_THAT(channelsOf(BSP_TEST_START_ORDER_OF_ALL),
                UnorderedElementsAre("bsp.core: streams yes, tables yes",
                                     "Bsp.WarmDatabase: streams yes, tables yes",
                                     "bsp.networking: streams yes, tables yes"));
}

} // namespace
