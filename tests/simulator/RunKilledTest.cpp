#include "RunTestBase.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using testsupport::Program;

/** Kills bsp-board and looks at what it leaves. */
class RunKilled : public RunTest
{
protected:
    static constexpr int Patience = 20000; // milliseconds

    void SetUp() override
    {
        RunTest::SetUp();
        // What loses its parent becomes this process's child.
        ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    }

    /** Runs a command on the board with an output that outputEnds() reads. */
    pid_t start(const std::string& script)
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        m_reading = ends[0];
        m_writing = ends[1];
        Program program = shell(script);
        program.prepare = [this] {
            ::dup2(m_writing, STDOUT_FILENO);
            ::dup2(m_writing, STDERR_FILENO);
        };
        return program.start();
    }

    /** Closes this end of the output; whether nobody else has it open any more. */
    bool outputEnds()
    {
        ::close(m_writing);
        std::array<char, 1000> text{};
        pollfd output{m_reading, POLLIN, 0};
        while (::poll(&output, 1, Patience) == 1) {
            if (::read(m_reading, text.data(), text.size()) == 0) {
                ::close(m_reading);
                return true;
            }
        }
        return false;
    }

    /** Whether all processes end that this one has started or adopted. */
    static bool allEnd()
    {
        for (int waited = 0; waited < Patience; ++waited) {
            const pid_t process = ::waitpid(-1, nullptr, WNOHANG);
            if (process == -1) {
                return true;
            }
            if (process == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
        return false;
    }

private:
    int m_reading = -1;
    int m_writing = -1;
};

TEST_P(RunKilled, TakesTheCommandAlong)
{
    const pid_t process = start("sleep 3600 & touch ready; sleep 3600");
    waitForFile("ready");
    ::kill(process, SIGKILL);
    EXPECT_TRUE(outputEnds());
    EXPECT_TRUE(allEnd());
}

TEST_P(RunKilled, LeavesNothingAtAnyMomentOfItsStart)
{
    for (int i = 0; i < 80; ++i) {
        const pid_t process = start("exec sleep 0.01");
        std::this_thread::sleep_for(std::chrono::microseconds(i * 400));
        ::kill(process, i % 4 == 0 ? SIGTERM : SIGKILL);
        ASSERT_TRUE(outputEnds()) << i;
        ASSERT_TRUE(allEnd()) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Isolated, RunKilled,
                         testing::Values("", "--isolate=proot", "--isolate=none"), nameOfIsolation);

} // namespace
