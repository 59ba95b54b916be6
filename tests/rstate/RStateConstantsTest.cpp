#include "RStateConstants.h"
#include "RState.h"

#include <gmock/gmock.h>

namespace
{

TEST(RStateConstants, HaveTheirValuesAndAddressesForOlderUsers)
{
    std::vector<std::int32_t> values;
    for (const std::int32_t* constant : addressesOfConstants()) {
        values.push_back(*constant);
    }
    EXPECT_THAT(values, testing::ElementsAre(20, 340, 5460, 107860, 20, 16, 16, 20, 12));
}

TEST(RStateConstants, NumberTheIncrementTypes)
{
    EXPECT_EQ(static_cast<int>(IncrementType::Auto), 0);
    EXPECT_EQ(static_cast<int>(IncrementType::Revision), 1);
    EXPECT_EQ(static_cast<int>(IncrementType::Minor), 2);
    EXPECT_EQ(static_cast<int>(IncrementType::Major), 3);
    EXPECT_EQ(static_cast<int>(IncrementType::EndOfList), 4);
}

} // namespace
