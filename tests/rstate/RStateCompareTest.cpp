#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

struct Comparison
{
    const char* a;
    const char* b;
    int result;
};

const Comparison comparisons[] = {
    {"R1A", "R1A", 0},        {"R1A01", "R1A01", 0},
    {"R1A01", "R1A02", -1},   {"R1A02", "R1A01", 1},
    {"R1A", "R1A01", 0},      {"R1A01", "R1A", 0},
    {"R1A", "R1A999", 0},     {"R1A00", "R1A05", 0},
    {"R1B", "R1A99", 1},      {"R1A99", "R1B", -1},
    {"R1A99", "R1B01", -1},   {"R1Z", "R1AB", -1},
    {"R1AB", "R1Z", 1},       {"R1ZZ", "R1ABB", -1},
    {"R1ZZZ", "R1ABBA", -1},  {"R2A", "R1ZZZZ", 1},
    {"R1ZZZZ", "R2A", -1},    {"R1ZZZZ999", "R2A01", -1},
    {"R10A", "R9A", 1},       {"R2147483647A", "R1A", 1},
    {"R1I", "R1J", 0},        {"R001A", "R1A00", 0},
    {"foo", "", 0},           {"foo", "R1A", -1},
    {"R1A1000", "R1A999", 1},
};

TEST(RStateCompare, FollowsTheVersion)
{
    for (const Comparison& row : comparisons) {
        const RState a{std::string(row.a)};
        const RState b{std::string(row.b)};
        EXPECT_EQ(a < b, row.result < 0) << row.a << " < " << row.b;
        EXPECT_EQ(b<a, row.result> 0) << row.b << " < " << row.a;
        EXPECT_EQ(a == b, row.result == 0) << row.a << " == " << row.b;
        EXPECT_EQ(b == a, row.result == 0) << row.b << " == " << row.a;
        EXPECT_EQ(RState_compare(row.a, row.b), row.result) << row.a << ' ' << row.b;
        EXPECT_EQ(RState_compare(row.b, row.a), -row.result) << row.b << ' ' << row.a;
    }
    takeLines();
}

TEST(RStateCompare, TakesNegativeVerificationsAsNumbers)
{
    EXPECT_TRUE(RState(1, 0, -1) < RState(1, 0, 1));
    EXPECT_FALSE(RState(1, 0, -1) == RState(1, 0, 1));
    EXPECT_TRUE(RState(-2147483647 - 1, 0, 0) < RState(2147483647, 0, 0));
    EXPECT_TRUE(RState(1, -2147483647 - 1, 0) < RState(1, 2147483647, 0));
}

TEST(RStateCompare, IgnoresTheText)
{
    EXPECT_TRUE(RState(std::string("R1I")) == RState(1, 8, 0));
}

TEST(RStateCompare, ReportsTheRightOperand)
{
    const RState a(std::string("R1A01"));
    const RState b(std::string("R1A02"));
    takeLines();
    EXPECT_TRUE(a < b);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 7 ENTER operator<(R1A02)\n"));
    EXPECT_FALSE(b == a);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 7 ENTER operator==(R1A01)\n"));
    recordingtrace::setLevel("bsp.rstate", 6);
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(a == b);
    EXPECT_THAT(takeLines(), ElementsAre());
}

TEST(RStateCompare, AsksWhetherOlderFirst)
{
    EXPECT_EQ(RState_compare("R1A01", "R1A02"), -1);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 4 RState(): R-state: R1A01, version: 1.0.1\n",
                                         "bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 4 RState(): R-state: R1A02, version: 1.0.2\n",
                                         "bsp.rstate 7 ENTER operator<(R1A02)\n"));
    EXPECT_EQ(RState_compare("R1B", "R1A"), 1);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 4 RState(): R-state: R1B, version: 1.1.0\n",
                                         "bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 4 RState(): R-state: R1A, version: 1.0.0\n",
                                         "bsp.rstate 7 ENTER operator<(R1A)\n",
                                         "bsp.rstate 7 ENTER operator==(R1A)\n"));
}

} // namespace
