
#include "AreaTest.h"

#include <ostream>

namespace
{

using namespace areatest;
using namespace testing;
using namespace warmboard;

struct Decision
{
    std::uint32_t cause;
    bool clears;

    friend std::ostream& operator<<(std::ostream& stream, const Decision& decision)
    {
        return stream << decision.cause;
    }
};

class ClearingByCause : public TestWithParam<Decision>
{};

TEST_P(ClearingByCause, FollowsTheResetCause)
{
    useNxu4(GetParam().cause);
    const std::string contents = areaWith({{0, "FIRST"}, {1, "SECOND"}});
    fillArea(contents);
    WarmDatabase::getInstance();
    if (GetParam().clears) {
        EXPECT_THAT(takeLines(), ElementsAre(cold, freeTable));
        EXPECT_EQ(area(), zeros());
    } else {
        EXPECT_THAT(takeLines(), ElementsAre(warm, freeTable, used(1, "FIRST"), used(2, "SECOND")));
        EXPECT_EQ(area(), contents);
    }
}

INSTANTIATE_TEST_SUITE_P(ResetCauses, ClearingByCause,
                         Values(Decision{0, true}, Decision{1, false}, Decision{2, false},
                                Decision{3, false}, Decision{4, false}, Decision{77, false},
                                Decision{0xFFFFFFFFU, false}),
                         [](const auto& test) { return std::to_string(test.param.cause); });

TEST(Clearing, OnABoardWithoutARegister)
{
    use(Nxu5Word, Nxu4aProduct);
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(cold, freeTable));
    EXPECT_EQ(area(), zeros());
    EXPECT_EQ(fakedevices::control().created, 0);
}

TEST(Clearing, OfKt4851_4WithoutTheMarker)
{
    use(Nxu5Word, Kt4851_4Product);
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(warm, freeTable, used(1, "FIRST")));
}

TEST(Clearing, OfKt4851_4WithTheMarker)
{
    use(Nxu5Word, Kt4851_4Product);
    testsupport::writeFile("/tmp/restart_cold", "");
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(cold, freeTable));
    EXPECT_EQ(area(), zeros());
}

TEST(Clearing, OnAnUnreadableResetCauseKeepsTheArea)
{
    useNxu4(Cold);
    fakedevices::control().readFails = true;
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(warm, freeTable, used(1, "FIRST")));
}

TEST(Listing, LooksAtEveryBlock)
{
    useNxu4(Warm);
    fillArea(areaWith({{1, "AFTER A FREE ONE"}, {31, "THE LAST"}}));
    WarmDatabase& database = WarmDatabase::getInstance();
    takeLines();
    database.logNamesOfUsedBlocks();
    EXPECT_THAT(takeLines(),
                ElementsAre(freeTable, used(2, "AFTER A FREE ONE"), used(32, "THE LAST")));
}

TEST(Listing, OfAnAreaThatWasNeverCleared)
{
    useNxu4(Unknown);
    fillArea(std::string(32768, 'A'));
    WarmDatabase::getInstance();
    Lines expected = {warm, freeTable};
    for (int number = 1; number <= 32; ++number) {
        expected.push_back(used(number, "AAAAAAAAAAAAAAAA"));
    }
    EXPECT_EQ(takeLines(), expected);
}

TEST(Listing, ShowsBytesAbove127)
{
    useNxu4(Warm);
    fillArea(areaWith({{0, "\xC4\xFF"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(takeLines(), ElementsAre(warm, freeTable, used(1, "\xC4\xFF")));
}

TEST(FreeBlocks, AreCountedInTheWholeTable)
{
    useNxu4(Warm);
    fillArea(areaWith({{0, "a"}, {1, "b"}, {5, "c"}, {31, "d"}}));
    WarmDatabase& database = WarmDatabase::getInstance();
    takeLines();
    systemcalls::take();
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 28U);
    EXPECT_THAT(takeLines(),
                ElementsAre(prefix + "5 getNumberOfFreeBlocks(): Max number of blocks available: "
                                     "32, Number of free blocks: 28"));
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "the semaphore is not taken";
}

TEST(FreeBlocks, AreAllAfterAColdRestart)
{
    useNxu4(Cold);
    fillArea(std::string(32768, 'A'));
    EXPECT_EQ(WarmDatabase::getInstance().getNumberOfFreeBlocks(), 32U);
}

TEST(FreeBlocks, AreCountedAndListedWhileOthersHoldTheSemaphore)
{
    useNxu4(Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    database.lock();
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 32U);
    database.logNamesOfUsedBlocks();
    database.unlock();
}

} // namespace
