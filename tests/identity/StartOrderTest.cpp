/**
 * @file
 * @brief The order in which the modules' objects are made in a program that takes them from the
 * archive.
 */
#include "Program.h"

#include <gmock/gmock.h>

#include <sstream>

namespace
{

using testing::UnorderedElementsAre;

std::vector<std::string> linesOf(const char* path)
{
    testsupport::Program program{};
    program.path = path;
    std::istringstream out(program.run().out);
    std::vector<std::string> lines;
    for (std::string line; std::getline(out, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(StartOrder, InAProgramThatUsesOneFunction)
{
    EXPECT_THAT(linesOf(BSP_TEST_START_ORDER_OF_ONE),
                UnorderedElementsAre("bsp.core: streams yes, tables yes"));
}

TEST(StartOrder, InAProgramThatUsesAllChannels)
{
    EXPECT_THAT(linesOf(BSP_TEST_START_ORDER_OF_ALL),
                UnorderedElementsAre("bsp.core: streams yes, tables yes",
                                     "Bsp.WarmDatabase: streams yes, tables yes",
                                     "bsp.networking: streams yes, tables yes"));
}

} // namespace
