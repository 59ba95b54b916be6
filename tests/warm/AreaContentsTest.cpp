#include "ExpectedLines.h"
#include "RecordingTrace.h"
#include "WarmBoard.h"
#include "WarmCalls.h"
#include "WarmDatabase.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

namespace
{

using namespace expectedlines;
using os::bsp::dtcm::WarmDatabase;
using testing::ElementsAre;
using testing::IsEmpty;
using warmboard::area;
using warmboard::areaWith;
using warmboard::fillArea;
using warmboard::zeros;
using Lines = std::vector<std::string>;

struct Decision
{
    std::uint32_t cause;
    bool clears;

    friend std::ostream& operator<<(std::ostream& stream, const Decision& decision)
    {
        return stream << decision.cause;
    }
};

class ClearingByCause : public testing::TestWithParam<Decision>
{};

TEST_P(ClearingByCause, FollowsTheResetCause)
{
    warmboard::useNxu4(GetParam().cause);
    const std::string contents = areaWith({{0, "FIRST"}, {1, "SECOND"}});
    fillArea(contents);
    WarmDatabase::getInstance();
    if (GetParam().clears) {
        EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(cold, freeTable));
        EXPECT_EQ(area(), zeros());
    } else {
        EXPECT_THAT(recordingtrace::takeLines(),
                    ElementsAre(warm, freeTable, used(1, "FIRST"), used(2, "SECOND")));
        EXPECT_EQ(area(), contents);
    }
}

INSTANTIATE_TEST_SUITE_P(ResetCauses, ClearingByCause,
                         testing::Values(Decision{0, true}, Decision{1, false}, Decision{2, false},
                                         Decision{3, false}, Decision{4, false},
                                         Decision{77, false}, Decision{0xFFFFFFFFU, false}),
                         [](const auto& test) { return std::to_string(test.param.cause); });

TEST(Clearing, OnABoardWithoutARegister)
{
    warmboard::use(warmboard::Nxu5Word, warmboard::Nxu4aProduct);
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(cold, freeTable));
    EXPECT_EQ(area(), zeros());
    EXPECT_EQ(fakedevices::control().created, 0);
}

TEST(Clearing, OfKt4851_4WithoutTheMarker)
{
    warmboard::use(warmboard::Nxu5Word, warmboard::Kt4851_4Product);
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(warm, freeTable, used(1, "FIRST")));
}

TEST(Clearing, OfKt4851_4WithTheMarker)
{
    warmboard::use(warmboard::Nxu5Word, warmboard::Kt4851_4Product);
    testsupport::writeFile("/tmp/restart_cold", "");
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(cold, freeTable));
    EXPECT_EQ(area(), zeros());
}

TEST(Clearing, OnAnUnreadableResetCauseKeepsTheArea)
{
    warmboard::useNxu4(warmboard::Cold);
    fakedevices::control().readFails = true;
    fillArea(areaWith({{0, "FIRST"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(warm, freeTable, used(1, "FIRST")));
}

TEST(Listing, LooksAtEveryBlock)
{
    warmboard::useNxu4(warmboard::Warm);
    fillArea(areaWith({{1, "AFTER A FREE ONE"}, {31, "THE LAST"}}));
    WarmDatabase& database = WarmDatabase::getInstance();
    recordingtrace::takeLines();
    database.logNamesOfUsedBlocks();
    EXPECT_THAT(recordingtrace::takeLines(),
                ElementsAre(freeTable, used(2, "AFTER A FREE ONE"), used(32, "THE LAST")));
}

TEST(Listing, OfAnAreaThatWasNeverCleared)
{
    warmboard::useNxu4(warmboard::Unknown);
    fillArea(std::string(32768, 'A'));
    WarmDatabase::getInstance();
    Lines expected = {warm, freeTable};
    for (int number = 1; number <= 32; ++number) {
        expected.push_back(used(number, "AAAAAAAAAAAAAAAA"));
    }
    EXPECT_EQ(recordingtrace::takeLines(), expected);
}

TEST(Listing, ShowsBytesAbove127)
{
    warmboard::useNxu4(warmboard::Warm);
    fillArea(areaWith({{0, "\xC4\xFF"}}));
    WarmDatabase::getInstance();
    EXPECT_THAT(recordingtrace::takeLines(), ElementsAre(warm, freeTable, used(1, "\xC4\xFF")));
}

TEST(FreeBlocks, AreCountedInTheWholeTable)
{
    warmboard::useNxu4(warmboard::Warm);
    fillArea(areaWith({{0, "a"}, {1, "b"}, {5, "c"}, {31, "d"}}));
    WarmDatabase& database = WarmDatabase::getInstance();
    recordingtrace::takeLines();
    systemcalls::take();
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 28U);
    EXPECT_THAT(recordingtrace::takeLines(),
                ElementsAre(prefix + "5 getNumberOfFreeBlocks(): Max number of blocks available: "
                                     "32, Number of free blocks: 28"));
    EXPECT_THAT(systemcalls::take(), IsEmpty()) << "the semaphore is not taken";
}

TEST(FreeBlocks, AreAllAfterAColdRestart)
{
    warmboard::useNxu4(warmboard::Cold);
    fillArea(std::string(32768, 'A'));
    EXPECT_EQ(WarmDatabase::getInstance().getNumberOfFreeBlocks(), 32U);
}

TEST(FreeBlocks, AreCountedAndListedWhileOthersHoldTheSemaphore)
{
    warmboard::useNxu4(warmboard::Warm);
    WarmDatabase& database = WarmDatabase::getInstance();
    database.lock();
    EXPECT_EQ(database.getNumberOfFreeBlocks(), 32U);
    database.logNamesOfUsedBlocks();
    database.unlock();
}

} // namespace
