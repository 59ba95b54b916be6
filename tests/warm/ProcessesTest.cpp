#include "Program.h"
#include "WarmProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using namespace testsupport;

constexpr int NumberOfStarters = 100;
/** Processes of another processor, or with a sanitizer, take long to start. */
constexpr bool AreSlow = sizeof(BSP_TEST_EMULATOR BSP_TEST_SANITIZERS) > 1;
constexpr int Storms = AreSlow ? 1 : 3;

/** Runs the program in C on a board. */
Outcome read(const Board& board, const std::string& name)
{
    Program program = programAt(BSP_TEST_WARM_READER, {name});
    program.environment = board;
    return program.run();
}

bool namesExist()
{
    return std::filesystem::exists("/dev/shm/sem.DtcmDbSharedSem") ||
           std::filesystem::exists("/dev/shm/DtcmSync");
}

/** Many processes start at once, of which one creates an object; then all end. */
void storm()
{
    std::array<int, 2> gate{};
    ASSERT_EQ(::pipe2(gate.data(), O_CLOEXEC), 0);
    std::vector<std::unique_ptr<WarmProcess>> processes;
    for (int i = 0; i < NumberOfStarters; ++i) {
        processes.push_back(std::make_unique<WarmProcess>(nxu4("0"), gate[0]));
        processes.back()->tell("gate 9");
        processes.back()->tell("get RACE 8");
    }
    ::close(gate[0]);
    ::close(gate[1]);
    WarmProcess* creator = nullptr;
    int found = 0;
    for (const auto& process : processes) {
        EXPECT_EQ(process->answer(), "ok");
        const std::string answer = process->answer();
        if (answer == "created") {
            EXPECT_EQ(creator, nullptr) << "two processes created it";
            creator = process.get();
        } else {
            EXPECT_EQ(answer, "found");
            ++found;
        }
    }
    ASSERT_NE(creator, nullptr);
    EXPECT_EQ(found, NumberOfStarters - 1);
    creator->ask("write winner");
    for (const auto& process : processes) {
        EXPECT_EQ(process->ask("read"), "winner");
        EXPECT_EQ(process->ask("free"), "31");
        EXPECT_EQ(process->ask("errors"), "");
    }
    for (const auto& process : processes) {
        EXPECT_EQ(process->exit(), 0);
    }
    EXPECT_FALSE(namesExist());
}

TEST(Processes, OfDifferentProgramsShareAnObject)
{
    WarmProcess writer(nxu4("0"));
    writer.expect({{"get SHARED 64", "created"}, {"write hello", "ok"}, {"setslot 12", "ok"}});
    EXPECT_EQ(read(nxu4("0"), "SHARED"), answer("hello\n12\n"));
    EXPECT_EQ(writer.exit(), 0);
    EXPECT_FALSE(namesExist());
}

TEST(Processes, ExcludeEachOtherWithABlocksMutex)
{
    WarmProcess first(nxu4("1"));
    EXPECT_EQ(first.ask("get A 8"), "created");
    WarmProcess second(nxu4("1"));
    EXPECT_EQ(second.ask("get A 8"), "found");
    EXPECT_EQ(first.ask("try"), "ok");
    second.expect({{"try", "busy"}, {"get B 8", "created"}});
    EXPECT_EQ(second.ask("try"), "ok") << "each block has a mutex of its own";
    EXPECT_EQ(first.ask("unlock"), "ok");
    second.expect({{"get A 8", "found"}, {"try", "ok"}});
}

TEST(Processes, FindAHeldMutexHeld)
{
    WarmProcess holder(nxu4("1"));
    holder.expect({{"get A 8", "created"}, {"try", "ok"}});
    WarmProcess later(nxu4("1"));
    later.expect({{"get A 8", "found"}, {"try", "busy"}});
}

TEST(Processes, StartingTogetherCreateAnObjectOnce)
{
    for (int round = 0; round < Storms && !HasFailure(); ++round) {
        SCOPED_TRACE("storm " + std::to_string(round));
        storm();
    }
}

TEST(Processes, ShareTheSlotId)
{
    WarmProcess first(nxu4("0"));
    EXPECT_EQ(first.ask("slot"), "-1");
    WarmProcess second(nxu4("0"));
    EXPECT_EQ(second.ask("slot"), "-1");
    EXPECT_EQ(first.ask("setslot 5"), "ok");
    EXPECT_EQ(second.ask("slot"), "5");
}

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
    first.expect({{"setslot 3", "ok"}, {"slot", "3"}});
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
    second.expect({{"read", "shared"}, {"hold", "ok"}});
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
