// Many callers at once, all of which inflate their image to a file of the same name.

#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "ManyThreads.h"
#include "Program.h"
#include "RecordingTrace.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace firmware;

constexpr int Callers = 8;

class KernelConcurrency : public testing::Test
{
protected:
    KernelConcurrency()
    {
        recordingtrace::setLevel("bsp.core", 0);
        for (int i = 0; i < Callers; ++i) {
            // Of different sizes, so that one image's remains would show in another's file.
            testsupport::writeFile(image(i),
                                   kernelImage(noise(static_cast<std::size_t>(i) * 40000) +
                                               "Linux version 2.6.34." + rstate(i)));
        }
    }
    ~KernelConcurrency() override { EXPECT_FALSE(temporaryImageExists()); }

    std::string image(int i) const { return m_directory.file(std::to_string(i)); }
    static std::string rstate(int i) { return "R" + std::to_string(i) + "A"; }

    bool asksRight(int i) const { return askFile(image(i)) == found(rstate(i)); }

    /** A process that asks for one image; it ends with 0 after right answers alone. */
    pid_t startCaller(int i, int rounds) const
    {
        return testsupport::startCopy([=] {
            int right = 0;
            for (int round = 0; round < rounds; ++round) {
                right += asksRight(i) ? 1 : 0;
            }
            return right == rounds;
        });
    }

private:
    const testsupport::TemporaryDirectory m_directory;
};

TEST_F(KernelConcurrency, ThreadsWithDifferentImagesAllGetTheirAnswer)
{
    std::atomic<int> right{0};
    testsupport::inManyThreads(Callers, [this, &right](std::size_t number) {
        for (int round = 0; round < 40; ++round) {
            right += asksRight(static_cast<int>(number)) ? 1 : 0;
        }
    });
    EXPECT_EQ(right, Callers * 40);
}

TEST_F(KernelConcurrency, ProcessesWithDifferentImagesAllGetTheirAnswer)
{
    std::vector<pid_t> processes;
    for (int i = 0; i < Callers; ++i) {
        processes.push_back(startCaller(i, 100));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(testsupport::waitFor(process), 0);
    }
}

TEST_F(KernelConcurrency, CallersKilledAtAnyMomentHarmNoOther)
{
    std::minstd_rand generator(1);
    for (int round = 0; round < 60; ++round) {
        const pid_t first = startCaller(7, 1000000);
        const pid_t second = startCaller(6, 1000000);
        std::this_thread::sleep_for(std::chrono::microseconds(generator() % 4000));
        ::kill(first, SIGKILL);
        EXPECT_TRUE(asksRight(round % 6));
        ::kill(second, SIGKILL);
        EXPECT_TRUE(asksRight(round % 6));
        ::waitpid(first, nullptr, 0);
        ::waitpid(second, nullptr, 0);
    }
    // The last one killed may have left its file; whoever asks next removes it.
    EXPECT_TRUE(asksRight(0));
}

TEST_F(KernelConcurrency, ProcessForkedWhileAskingBlocksNobody)
{
    // The child inherits whatever descriptors are open at that moment, and keeps them.
    std::atomic<bool> done{false};
    std::thread asking([this, &done] {
        while (!done) {
            EXPECT_TRUE(asksRight(7));
        }
    });
    std::vector<pid_t> children;
    for (int i = 0; i < 20; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        children.push_back(testsupport::startCopy([] { return ::pause() == 0; }));
    }
    EXPECT_TRUE(asksRight(1));
    done = true;
    asking.join();
    EXPECT_TRUE(asksRight(2));
    for (const pid_t child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
}

} // namespace
