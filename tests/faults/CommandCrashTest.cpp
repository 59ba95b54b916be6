/**
 * @file
 * @brief Every command is killed at every system call; whoever comes next goes on.
 */
#include "CommandTest.h"
#include "Files.h"

#include <gmock/gmock.h>

#include <iostream>

#include <semaphore.h>

namespace
{

using namespace faults;

/** Whether the store's semaphore is there and taken. */
bool isSemaphoreTaken()
{
    sem_t* const semaphore = ::sem_open("/DtcmDbSharedSem", 0);
    if (semaphore == SEM_FAILED) {
        return false;
    }
    int value = 0;
    ::sem_getvalue(semaphore, &value);
    ::sem_close(semaphore);
    return value == 0;
}

/** What a cold restart does to the board: names are gone, and so is the warm area. */
void restartCold()
{
    testsupport::writeFile("/tmp/board/top.dtcm0", std::string(32768, '\0'));
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        std::filesystem::remove(entry.path());
    }
}

class CommandCrashTest : public CommandTest
{
protected:
    /** The next command answers, or waits for who was killed, until the board is restarted. */
    void expectNextGoesOn()
    {
        const bool waits = isSemaphoreTaken() || isSlotTaken();
        if (waits) {
            ++m_waiting;
            const ProgramRun waiting = run(words(), std::chrono::milliseconds(200));
            EXPECT_EQ(waiting.status, 128 + SIGALRM) << describe(waiting);
            restartCold();
        }
        const ProgramRun next = run(words());
        EXPECT_TRUE(endsNormally(next) || (!waits && isSlotNew() && next.out == "0\n"))
            << describe(next);
        if (changesSettings()) {
            EXPECT_EQ(testsupport::readFile(SettingsFile), changedSettings());
        }
    }

    /** Whether the object of the slot id is there with nothing in it: its maker was killed. */
    static bool isSlotNew()
    {
        const std::string area = testsupport::readFile("/tmp/board/top.dtcm0");
        return area.compare(0, 5, "SLOT", 5) == 0 && area.substr(16, 4) == std::string(4, '\0');
    }

    /** Whether the mutex in that object is taken: on this machine its first word is not 0. */
    static bool isSlotTaken()
    {
        const std::string area = testsupport::readFile("/tmp/board/top.dtcm0");
        return area.compare(0, 5, "SLOT", 5) == 0 && area.substr(24, 4) != std::string(4, '\0');
    }

    int m_waiting = 0; /**< How often the next had to wait. */
};

TEST_P(CommandCrashTest, LeavesAllInAStateThatTheNextCanUse)
{
    for (std::size_t call = 0; call < m_normal.calls.size(); ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call) + ", number " +
                     std::to_string(m_normal.calls[call].number));
        makeBoard(GetParam());
        const ProgramRun killed = runWatched(words(), Fault{call, Fault::Kills, 0});
        ASSERT_EQ(killed.status, 128 + SIGKILL);
        if (changesSettings()) {
            EXPECT_THAT(testsupport::readFile(SettingsFile),
                        testing::AnyOf(Settings, changedSettings()));
        }
        expectNextGoesOn();
    }
    // Only who decides about the area keeps all others waiting.
    EXPECT_EQ(m_waiting > 0, GetParam().name.rfind("getSlotId", 0) == 0);
    std::cout << GetParam().name << ": killed " << m_normal.calls.size() << " times, " << m_waiting
              << " times all others wait until the restart\n";
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandCrashTest, testing::ValuesIn(commands()),
                         [](const auto& chosen) { return chosen.param.name; });

} // namespace
