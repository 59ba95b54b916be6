#include "SimulatorTest.h"

#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using testing::Contains;

class BoardLock : public SimulatorTest
{
protected:
    void SetUp() override
    {
        expectQuiet({"create", "b"});
        m_board = ::open(file("b").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_NE(m_board, -1);
    }
    void TearDown() override { ::close(m_board); }

    void hold(int kind) const { ASSERT_EQ(::flock(m_board, kind | LOCK_NB), 0); }

    int m_board = -1;
};

TEST_F(BoardLock, IsWaitedFor)
{
    write("b/shm/object", "");
    hold(LOCK_SH);
    const pid_t restart = boardTool({"restart", "b", "warm"}).start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_THAT(everything(), Contains("b/shm/object="));
    hold(LOCK_UN);
    EXPECT_EQ(testsupport::waitFor(restart), 0);
    EXPECT_TRUE(entries("b/shm").empty());
}

TEST_F(BoardLock, IsNotWaitedForWithoutEnd)
{
    hold(LOCK_EX);
    const std::vector<std::string> before = everything();
    expectRefusal({"restart", "b", "cold"},
                  "'b' has been in use by another bsp-board for 10 seconds");
    EXPECT_EQ(everything(), before);
}

TEST_F(BoardLock, KeepsARestartFromBeingShownHalfDone)
{
    hold(LOCK_SH);
    EXPECT_EQ(run({"show", "b"}).status, 0);
    hold(LOCK_EX);
    testsupport::Program program = boardTool({"show", "b"});
    program.prepare = [] { ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    const pid_t show = program.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(::waitpid(show, nullptr, WNOHANG), 0);
    hold(LOCK_UN);
    EXPECT_EQ(testsupport::waitFor(show), 0);
}

TEST_F(BoardLock, LetsManyRestartABoardAtOnce)
{
    for (int round = 0; round < 5; ++round) {
        std::vector<pid_t> processes;
        for (const char* cause : {"cold", "warm", "cold", "watchdog", "cold", "warm"}) {
            processes.push_back(boardTool({"restart", "b", cause}).start());
        }
        for (const pid_t process : processes) {
            EXPECT_EQ(testsupport::waitFor(process), 0);
        }
        const bool cold = contents("b/top.sys_ctrl0").substr(0, 4) == word(0);
        EXPECT_EQ(std::filesystem::exists(file("b/tmp/restart_cold")), cold);
        EXPECT_EQ(contents("b/leds/red/korvanta_state"), "steady_off\n");
    }
}

} // namespace
