#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>

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

struct Step
{
    const char* before;
    IncrementType type;
    const char* after;
};

constexpr IncrementType Auto = IncrementType::Auto;
constexpr IncrementType Revision = IncrementType::Revision;
constexpr IncrementType Minor = IncrementType::Minor;
constexpr IncrementType Major = IncrementType::Major;

void expectSteps(const std::vector<Step>& rows)
{
    for (const Step& row : rows) {
        RState rstate{std::string(row.before)};
        rstate.increment(row.type);
        EXPECT_EQ(rstate.getText(), row.after)
            << row.before << " by " << static_cast<int>(row.type);
    }
    takeLines();
}

TEST(RStateIncrement, StepsLabels)
{
    expectSteps({
        {"R1A01", Auto, "R1A02"},
        {"R1A", Auto, "R1B"},
        {"R1Z", Auto, "R1AB"},
        {"R1A999", Auto, "R1B01"},
        {"R1ZZZZ", Auto, "R2A"},
        {"R1ZZZZ999", Auto, "R2A01"},
        {"R1A99", Auto, "R1A100"},
        {"R1A", Revision, "R1A"},
        {"R1A05", Revision, "R1A06"},
        {"R1A999", Revision, "R1B01"},
        {"R1ZZZZ999", Revision, "R2A01"},
        {"R1A05", Minor, "R1B01"},
        {"R1ZZ", Minor, "R1ABB"},
        {"R1ZZZ", Minor, "R1ABBA"},
        {"R1ZZZZ", Minor, "R2A"},
        {"R1ZZZZ05", Minor, "R2A01"},
        {"R2B", Major, "R3A"},
        {"R2B07", Major, "R3A01"},
    });
}

TEST(RStateIncrement, RebuildsTheTextEvenWhenNothingChanges)
{
    expectSteps({{"R1A00", Revision, "R1A"},
                 {"R1I", Revision, "R1J"},
                 {"R1AA", Revision, "R1AB"},
                 {"R1ABCDE01", Revision, "R1ABCD"}});
}

TEST(RStateIncrement, StepsWhatTheParseReached)
{
    const std::vector<Step> rows = {
        {"foo", Auto, "R0B"},        {"foo", Revision, "R0A"},
        {"", Major, "R1A"},          {"R5", Major, "R6A"},
        {"R5", Auto, "R5B"},         {"R0A01", Auto, "R0B"},
        {"R1A1000", Auto, "R1B01"},  {"R1A1000", Minor, "R1B01"},
        {"R1A1000", Major, "R2A01"}, {"R1A4294967296", Minor, "R1B01"},
    };
    expectSteps(rows);
}

TEST(RStateIncrement, WrapsAtTheEndOfTheNumbers)
{
    const std::vector<Step> rows = {
        {"R2147483647A", Major, "R-2147483648A"},   {"R99999999999A", Major, "R-2147483648A"},
        {"R2147483647ZZZZ", Auto, "R-2147483648A"}, {"R1A2147483647", Auto, "R1A"},
        {"R1A2147483647", Revision, "R1A"},         {"R1A2147483646", Auto, "R1B01"},
    };
    expectSteps(rows);
    RState rstate(1, INT_MAX, 0);
    rstate.increment(Minor);
    EXPECT_EQ(rstate.getMinor(), INT_MIN);
    EXPECT_EQ(rstate.getText(), "R1@");
}

TEST(RStateIncrement, KeepsTextAndVersionInStep)
{
    RState rstate(std::string("R1ZZZZ999"));
    rstate.increment(Auto);
    EXPECT_EQ(rstate.getMajor(), 2);
    EXPECT_EQ(rstate.getMinor(), 0);
    EXPECT_EQ(rstate.getVerification(), 1);
}

TEST(RStateIncrement, LeavesAnRStateAloneForATypeThatIsNone)
{
    RState rstate(std::string("R1I1000"));
    takeLines();
    for (const int type : {4, 5, -1, INT_MIN, INT_MAX}) {
        rstate.increment(static_cast<IncrementType>(type));
        EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER increment(EndOfList)\n",
                                             "bsp.rstate 1 increment(" + std::to_string(type) +
                                                 "): Invalid parameter\n"));
        EXPECT_EQ(rstate.getText(), "R1I1000");
        EXPECT_EQ(rstate.getMinor(), 8);
        EXPECT_EQ(rstate.getVerification(), 1000);
    }
}

TEST(RStateIncrement, ReportsItsType)
{
    RState rstate(std::string("R1A"));
    takeLines();
    rstate.increment(Auto);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER increment(Auto)\n"));
    rstate.increment(Revision);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER increment(Revision)\n"));
    rstate.increment(Minor);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER increment(Minor)\n"));
    rstate.increment(Major);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER increment(Major)\n"));
    recordingtrace::setLevel("bsp.rstate", 5);
    rstate.increment(Major);
    EXPECT_THAT(takeLines(), ElementsAre());
}

TEST(RStateNormalize, CarriesTheVerificationThenTheMinor)
{
    struct
    {
        std::array<int, 3> before;
        std::array<int, 3> after;
    } const rows[] = {
        {{1, 0, 0}, {1, 0, 0}},
        {{1, 5, 999}, {1, 5, 999}},
        {{1, 5, 1000}, {1, 6, 1}},
        {{1, 5, 5000}, {1, 6, 1}},
        {{1, 107859, 0}, {1, 107859, 0}},
        {{1, 107860, 0}, {2, 0, 0}},
        {{1, 107860, 7}, {2, 0, 7}},
        {{1, 107859, 1000}, {2, 0, 1}},
        {{1, 500000, 0}, {2, 0, 0}},
        {{INT_MAX, 107860, 0}, {INT_MIN, 0, 0}},
        {{1, INT_MAX, 1000}, {1, INT_MIN, 1}},
    };
    for (const auto& row : rows) {
        RState rstate(row.before[0], row.before[1], row.before[2]);
        const std::string text = rstate.getText();
        rstate.normalizeVersion();
        EXPECT_THAT((std::array{rstate.getMajor(), rstate.getMinor(), rstate.getVerification()}),
                    testing::ElementsAreArray(row.after));
        EXPECT_EQ(rstate.getText(), text);
    }
}

} // namespace
