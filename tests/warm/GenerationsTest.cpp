#include "Files.h"
#include "WarmProcess.h"

#include <gtest/gtest.h>

namespace
{

constexpr int LongWait = 500;
constexpr int Nxu4a = 1;
constexpr int Kt4851_4 = 11;
const std::string semaphoreFile = "/dev/shm/sem.DtcmDbSharedSem";
const std::string syncFile = "/dev/shm/DtcmSync";
const std::string marker = "/tmp/restart_cold";

/** Stores a slot id in one process and asks for it in another, the first user after a restart. */
std::string slotAfter(const Board& before, const Board& after)
{
    {
        WarmProcess process(before);
        EXPECT_EQ(process.ask("setslot 5"), "ok");
        EXPECT_EQ(process.exit(), 0);
    }
    WarmProcess process(after);
    return process.ask("slot");
}

TEST(Restart, KeepsOrClearsByTheRegister)
{
    EXPECT_EQ(slotAfter(nxu4("0"), nxu4("1")), "5");
    std::filesystem::remove(semaphoreFile);
    std::filesystem::remove(syncFile);
    EXPECT_EQ(slotAfter(nxu4("1"), nxu4("2")), "5");
    std::filesystem::remove(semaphoreFile);
    std::filesystem::remove(syncFile);
    EXPECT_EQ(slotAfter(nxu4("3"), nxu4("0")), "-1");
}

TEST(Restart, OfAnotherProductClears)
{
    EXPECT_EQ(slotAfter(nxu5(Nxu4a), nxu5(Nxu4a)), "-1");
}

TEST(Restart, OfKt4851_4Keeps)
{
    EXPECT_EQ(slotAfter(nxu5(Kt4851_4), nxu5(Kt4851_4)), "5");
}

TEST(Restart, OfKt4851_4WithTheMarkerClears)
{
    testsupport::writeFile(marker, "");
    EXPECT_EQ(slotAfter(nxu5(Kt4851_4), nxu5(Kt4851_4)), "-1");
}

TEST(Generations, BeginWhenTheCreatorHasExited)
{
    WarmProcess creator(nxu4("1"));
    creator.expect({{"get A 64", "created"}, {"write old", "ok"}});
    WarmProcess older(nxu4("1"));
    EXPECT_EQ(older.ask("get A 64"), "found");
    EXPECT_EQ(creator.exit(), 0);
    EXPECT_FALSE(std::filesystem::exists(semaphoreFile));
    EXPECT_FALSE(std::filesystem::exists(syncFile));

    WarmProcess newer(nxu4("1"));
    EXPECT_EQ(newer.ask("get A 64"), "found");
    EXPECT_EQ(newer.ask("read"), "old") << "the area is the same";
    EXPECT_EQ(older.ask("try"), "ok");
    EXPECT_EQ(newer.ask("try"), "ok") << "the mutexes are not";
    EXPECT_EQ(older.ask("hold"), "ok");
    EXPECT_EQ(newer.ask("get B 8"), "created") << "nor is the semaphore";

    WarmProcess newest(nxu4("1"));
    newest.expect({{"get A 64", "found"}, {"try", "busy"}});
    EXPECT_EQ(newest.exit(), 0);
    EXPECT_TRUE(std::filesystem::exists(semaphoreFile)) << "it is the newer process's";
    EXPECT_EQ(newer.exit(), 0);
    EXPECT_FALSE(std::filesystem::exists(semaphoreFile));
}

TEST(Generations, ClearUnderOlderProcessesOnACold)
{
    WarmProcess creator(nxu4("0"));
    creator.expect({{"get A 64", "created"}, {"write old", "ok"}});
    WarmProcess older(nxu4("0"));
    EXPECT_EQ(older.ask("get A 64"), "found");
    EXPECT_EQ(older.ask("read"), "old") << "while the creator lives, nobody clears";
    EXPECT_EQ(creator.exit(), 0);
    WarmProcess newer(nxu4("0"));
    EXPECT_EQ(newer.ask("free"), "32");
    EXPECT_EQ(older.ask("read"), "");
}

TEST(Generations, EndWithAForkedCopyOfTheCreator)
{
    WarmProcess creator(nxu4("1"));
    EXPECT_EQ(creator.ask("open"), "ok");
    EXPECT_TRUE(std::filesystem::exists(semaphoreFile));
    EXPECT_EQ(creator.ask("fork"), "0");
    EXPECT_FALSE(std::filesystem::exists(semaphoreFile));
    EXPECT_FALSE(std::filesystem::exists(syncFile));
}

TEST(KilledCreator, LeavesItsNames)
{
    {
        WarmProcess creator(nxu4("0"));
        creator.expect({{"get A 64", "created"}, {"write kept", "ok"}});
        creator.kill();
    }
    EXPECT_TRUE(std::filesystem::exists(semaphoreFile));
    EXPECT_TRUE(std::filesystem::exists(syncFile));
    WarmProcess next(nxu4("0"));
    EXPECT_EQ(next.ask("get A 64"), "found") << "nobody decides again";
    EXPECT_EQ(next.ask("read"), "kept");
    EXPECT_EQ(next.exit(), 0);
    EXPECT_TRUE(std::filesystem::exists(semaphoreFile));

    std::filesystem::remove(semaphoreFile);
    std::filesystem::remove(syncFile);
    WarmProcess fresh(nxu4("0"));
    EXPECT_EQ(fresh.ask("free"), "32");
}

TEST(KilledCreator, ThatHeldTheSemaphoreBlocksTheOthers)
{
    {
        WarmProcess creator(nxu4("1"));
        EXPECT_EQ(creator.ask("hold"), "ok");
        creator.kill();
    }
    WarmProcess next(nxu4("1"));
    EXPECT_EQ(next.ask("free"), "32") << "counting takes no lock";
    next.tell("get A 8");
    EXPECT_FALSE(next.answersWithin(LongWait));
}

TEST(KilledHolder, OfABlocksMutexLeavesItHeld)
{
    WarmProcess creator(nxu4("1"));
    EXPECT_EQ(creator.ask("get A 8"), "created");
    {
        WarmProcess holder(nxu4("1"));
        holder.expect({{"get A 8", "found"}, {"try", "ok"}});
        holder.kill();
    }
    EXPECT_EQ(creator.ask("try"), "busy");
}

TEST(KilledHolder, OfTheSlotIdsMutexBlocksUntilAColdRestart)
{
    WarmProcess creator(nxu4("1"));
    EXPECT_EQ(creator.ask("setslot 5"), "ok");
    {
        WarmProcess holder(nxu4("1"));
        EXPECT_EQ(holder.ask("lockslot"), "ok");
        holder.kill();
    }
    EXPECT_EQ(creator.exit(), 0);
    {
        WarmProcess afterWarm(nxu4("1"));
        afterWarm.tell("slot");
        EXPECT_FALSE(afterWarm.answersWithin(LongWait));
        afterWarm.kill();
    }
    std::filesystem::remove(semaphoreFile);
    std::filesystem::remove(syncFile);
    WarmProcess afterCold(nxu4("0"));
    EXPECT_EQ(afterCold.ask("slot"), "-1");
}

TEST(SemaphoreAtZero, AfterAnExceptionBlocksEveryProcess)
{
    WarmProcess creator(nxu4("throws"));
    EXPECT_EQ(creator.ask("open"), "ok");
    EXPECT_EQ(creator.ask("errors"), "Bsp.WarmDatabase 1 WarmDatabase(): Error during "
                                     "initialization of warm area: Caught exception [no bus].");
    WarmProcess other(nxu4("1"));
    other.expect({{"open", "ok"}, {"errors", ""}});
    other.tell("get A 8");
    creator.tell("slot");
    EXPECT_FALSE(other.answersWithin(LongWait));
    EXPECT_FALSE(creator.answersWithin(0));
}

} // namespace
