/**
 * @file
 * @brief The tool where its caller has closed standard streams.
 */
#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

using testsupport::Outcome;

class Closed : public testing::TestWithParam<std::vector<int>>
{
protected:
    Outcome bsp(std::vector<std::string> arguments, bool closed) const
    {
        testsupport::Program program = testsupport::tool("bsp", std::move(arguments));
        program.environment = {{"BSP_BOARD_DIR", m_board.path().string()},
                               {"QELTRACE_OUTPUT", "stderr"},
                               {"QELTRACE_LEVEL", "*=7"}};
        if (closed) {
            program.prepare = [] {
                for (const int fd : GetParam()) {
                    ::close(fd);
                }
            };
        }
        return program.run();
    }

    /** What the program's caller sees of an answer. */
    static std::string visible(const std::string& answer)
    {
        const std::vector<int>& closed = GetParam();
        return std::count(closed.begin(), closed.end(), STDOUT_FILENO) == 0 ? answer : "";
    }

    /** Contents of all files of the board. */
    std::map<std::string, std::string> boardFiles() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_board.path())) {
            if (entry.is_regular_file()) {
                files[entry.path()] = testsupport::readFile(entry.path());
            }
        }
        return files;
    }

    testsupport::TemporaryDirectory m_board;
};

TEST_P(Closed, SpoilsNoSetting)
{
    ASSERT_EQ(bsp({"setRadiolinkMode", "Rl5"}, false).status, 0);
    const auto files = boardFiles();
    const Outcome outcome = bsp({"getRadiolinkMode"}, true);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(boardFiles() == files);
    EXPECT_EQ(outcome.out, visible("Rl5\n"));
    EXPECT_EQ(bsp({"setRadiolinkMode", "Rl4"}, true).status, 0);
    EXPECT_EQ(bsp({"getRadiolinkMode"}, false).out, "Rl4\n");
}

TEST_P(Closed, SpoilsNoMutex)
{
    // As a process has made them that still uses the store.
    ASSERT_NE(::sem_open("/DtcmDbSharedSem", O_CREAT | O_EXCL, 0666, 1), SEM_FAILED);
    const int sync = ::shm_open("/DtcmSync", O_RDWR | O_CREAT, 0666);
    ASSERT_NE(sync, -1);
    ASSERT_EQ(::ftruncate(sync, static_cast<off_t>(32 * sizeof(pthread_mutex_t))), 0);
    const std::string mutexes = testsupport::readFile("/dev/shm/DtcmSync");
    testsupport::writeFile(m_board.file("top.dtcm0"), std::string(32768, '\0'));

    const Outcome outcome = bsp({"getSlotId"}, true);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, visible("-1\n"));
    EXPECT_EQ(testsupport::readFile("/dev/shm/DtcmSync"), mutexes);
    ::close(sync);
}

TEST_P(Closed, ChangesNoStatus)
{
    EXPECT_EQ(bsp({}, true).status, 1);
    EXPECT_EQ(bsp({"noFunction"}, true).status, 1);
    EXPECT_EQ(bsp({"getKernelRState", "/dev/null"}, true).status, 1);
}

INSTANTIATE_TEST_SUITE_P(Streams, Closed,
                         testing::Values(std::vector<int>{0}, std::vector<int>{1},
                                         std::vector<int>{2}, std::vector<int>{0, 1},
                                         std::vector<int>{1, 2}, std::vector<int>{0, 1, 2}));

} // namespace
