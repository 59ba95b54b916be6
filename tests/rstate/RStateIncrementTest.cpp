#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

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
    expectSteps({{"foo", Auto, "R0B"},
                 {"foo", Revision, "R0A"},
                 {"", Major, "R1A"},
                 {"R5", Major, "R6A"},
                 {"R5", Auto, "R5B"},
                 {"R0A01", Auto, "R0B"},
                 {"R1A1000", Auto, "R1B01"},
                 {"R1A1000", Minor, "R1B01"},
                 {"R1A1000", Major, "R2A01"},
                 {"R1A4294967296", Minor, "R1B01"}});
}

TEST(RStateIncrement, WrapsAtTheEndOfTheNumbers)
{
    expectSteps({{"R2147483647A", Major, "R-2147483648A"},
                 {"R99999999999A", Major, "R-2147483648A"},
                 {"R2147483647ZZZZ", Auto, "R-2147483648A"},
                 {"R1A2147483647", Auto, "R1A"},
                 {"R1A2147483647", Revision, "R1A"},
                 {"R1A2147483646", Auto, "R1B01"}});
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
