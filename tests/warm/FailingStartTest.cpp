#include "WarmProcess.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

const std::string prefix = "Bsp.WarmDatabase 1 ";

Board withDtcm(const std::string& kind)
{
    Board board = nxu4("1");
    board["FAKE_DTCM"] = kind;
    return board;
}

/** Two processes that each have a store of their own. */
void expectPrivateStores(const Board& board, const std::string& message)
{
    WarmProcess first(board);
    EXPECT_EQ(first.ask("get A 64"), "created");
    EXPECT_EQ(first.ask("errors"), message);
    EXPECT_EQ(first.ask("setslot 3"), "ok");
    EXPECT_EQ(first.ask("slot"), "3");
    WarmProcess second(board);
    EXPECT_EQ(second.ask("free"), "32");
    EXPECT_EQ(second.ask("errors"), message);
    EXPECT_EQ(second.ask("slot"), "-1");
    EXPECT_EQ(second.exit(), 0);
    EXPECT_EQ(first.exit(), 0);
}

TEST(FailingStart, WithoutADevice)
{
    expectPrivateStores(withDtcm("missing"),
                        prefix +
                            "memoryMapTheDatabase(): Error during initialization of warm area");
}

TEST(FailingStart, WithoutAMapping)
{
    expectPrivateStores(withDtcm("unmappable"),
                        prefix + "memoryMapTheDatabase(): Error during initialization of warm "
                                 "area, error: Permission denied");
}

TEST(FailingStart, WithoutASemaphore)
{
    std::filesystem::create_directory("/dev/shm/sem.DtcmDbSharedSem");
    WarmProcess first(nxu4("0"));
    EXPECT_EQ(first.ask("get A 64"), "created");
    EXPECT_EQ(first.ask("errors"),
              prefix + "initDatabaseSemaphore(): error in sem_open error: Is a directory");
    EXPECT_EQ(first.ask("write shared"), "ok");
    WarmProcess second(nxu4("0"));
    EXPECT_EQ(second.ask("get A 64"), "found") << "nobody decides about the area";
    EXPECT_EQ(second.ask("read"), "shared");
    EXPECT_EQ(second.ask("hold"), "ok");
    EXPECT_EQ(first.ask("hold"), "ok") << "there is no lock";
}

TEST(FailingStart, WithoutSharedMutexes)
{
    std::filesystem::create_directory("/dev/shm/DtcmSync");
    WarmProcess first(nxu4("0"));
    EXPECT_EQ(first.ask("get A 64"), "created");
    EXPECT_EQ(first.ask("errors"),
              prefix + "initBlockSynchronization(): error in shm_open error: Invalid argument");
    WarmProcess second(nxu4("0"));
    EXPECT_EQ(second.ask("get A 64"), "found");
    EXPECT_EQ(first.ask("try"), "ok");
    EXPECT_EQ(first.ask("try"), "busy") << "in this process the mutex excludes";
    EXPECT_EQ(second.ask("try"), "ok") << "each process has mutexes of its own";
}

} // namespace
