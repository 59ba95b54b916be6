/**
 * @file
 * @brief All functions of the interface at first use from many threads, and forks in their middle.
 */
#include "Operations.h"
#include "RecordingTrace.h"
#include "Sanitizers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using interface::Answer;
using interface::Operation;
using interface::operations;

constexpr std::size_t Threads = 16;

/** What each function may answer. */
using Answers = std::vector<std::set<std::string>>;

class InterfaceRaces : public testing::Test
{
protected:
    InterfaceRaces()
    {
        interface::makeBoard();
        for (const char* channel :
             {"bsp.core", "Bsp.WarmDatabase", "bsp.networking", "bsp.led", "bsp.rstate"})
        {
            recordingtrace::setLevel(channel, 0);
        }
        learnAnswers();
    }
    ~InterfaceRaces() override { EXPECT_FALSE(std::filesystem::exists("/dev/shm/zImage_tmp")); }

    /** Calls all functions, from that one on; the number of wrong answers. */
    std::size_t wrongAnswers(std::size_t first) const
    {
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < operations().size(); ++i) {
            const std::size_t index = (first + i) % operations().size();
            Answer answer;
            operations()[index].perform(answer);
            if (m_answers[index].count(answer.text()) == 0) {
                std::cout << operations()[index].name + ": " + answer.text() + '\n';
                ++wrong;
            }
        }
        return wrong;
    }

private:
    /**
     * What they answer when nobody disturbs them, each in a process of its own. They also make the
     * objects: while another thread does that, the slot id is 0 for a moment, as it is to.
     */
    void learnAnswers()
    {
        using Texts = std::array<std::array<char, 256>, 256>;
        auto& texts = *static_cast<Texts*>(::mmap(nullptr, sizeof(Texts), PROT_READ | PROT_WRITE,
                                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0));
        m_answers.resize(operations().size());
        for (std::size_t first = 0; first < operations().size(); ++first) {
            const pid_t process = ::fork();
            if (process == 0) {
                Answer before;
                operations()[first].perform(before);
                std::strcpy(texts[first].data(), before.text());
                std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
            }
            int status = -1;
            ::waitpid(process, &status, 0);
            EXPECT_EQ(status, 0);
            m_answers[first].insert(texts[first].data());
            if (operations()[first].name.find("getRadiolinkMode") != std::string::npos) {
                // Others may have set it before it is read.
                m_answers[first].insert("1");
            }
        }
        ::munmap(&texts, sizeof(Texts));
    }

    Answers m_answers;
};

TEST_F(InterfaceRaces, AllFunctionsAnswerRightAtTheirFirstUseFromManyThreads)
{
    std::atomic<std::size_t> ready{0};
    std::atomic<std::size_t> wrong{0};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < Threads; ++number) {
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < Threads) {
                std::this_thread::yield();
            }
            // Two begin with the same one.
            wrong += wrongAnswers(number / 2 * operations().size() / (Threads / 2));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0U);
}

TEST_F(InterfaceRaces, ForksInTheMiddleOfCallsDisturbNobody)
{
    if (!testsupport::canForkBesideThreads()) {
        GTEST_SKIP() << testsupport::NoForkBesideThreads;
    }
    std::atomic<bool> isDone{false};
    std::atomic<std::size_t> wrong{0};
    std::atomic<std::size_t> rounds{0};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            while (!isDone || rounds < 8) {
                wrong += wrongAnswers(number * operations().size() / 4);
                ++rounds;
            }
        });
    }
    for (int forks = 0; forks < 300; ++forks) {
        const pid_t process = ::fork();
        if (process == 0) {
            ::_exit(0);
        }
        int status = -1;
        ::waitpid(process, &status, 0);
        EXPECT_EQ(status, 0);
    }
    isDone = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0U);
    EXPECT_GE(rounds, 8U);
}

} // namespace
