#include "AreaTest.h"

#include <functional>
#include <ostream>

namespace
{

using namespace areatest;
using namespace testing;
using namespace warmboard;

/** A board at its restart. */
struct Restart
{
    std::string name;
    std::function<void()> describe;
    bool clears;
    int registers; /**< How many devices are asked for the cause. */

    friend std::ostream& operator<<(std::ostream& stream, const Restart& restart)
    {
        return stream << restart.name;
    }
};

Restart withCause(std::uint32_t cause, bool clears)
{
    return {"Cause" + std::to_string(cause), [cause] { useNxu4(cause); }, clears, 1};
}

class Clearing : public TestWithParam<Restart>
{};

TEST_P(Clearing, FollowsTheResetCause)
{
    GetParam().describe();
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
    EXPECT_EQ(fakedevices::control().created, GetParam().registers);
}

const Restart restarts[] = {
    withCause(0, true),
    withCause(1, false),
    withCause(2, false),
    withCause(3, false),
    withCause(4, false),
    withCause(77, false),
    withCause(0xFFFFFFFFU, false),
    {"UnreadableCause",
     [] {
         useNxu4(Cold);
         fakedevices::control().readFails = true;
     },
     false, 1},
    {"WithoutARegister", [] { use(Nxu5Word, Nxu4aProduct); }, true, 0},
    {"OfKt4851_4", [] { use(Nxu5Word, Kt4851_4Product); }, false, 0},
    {"OfKt4851_4WithTheMarker",
     [] {
         use(Nxu5Word, Kt4851_4Product);
         testsupport::writeFile("/tmp/restart_cold", "");
     },
     true, 0},
};

INSTANTIATE_TEST_SUITE_P(Restarts, Clearing, ValuesIn(restarts),
                         [](const auto& test) { return test.param.name; });

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
    EXPECT_THAT(takeLines(), ElementsAre(prefix + "5 getNumberOfFreeBlocks(): Max number of blocks "
                                                  "available: 32, Number of free blocks: 28"));
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
