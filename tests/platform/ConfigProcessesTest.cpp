#include "Board.h"
#include "FileDescriptor.h"
#include "Files.h"
#include "NxuConfig.h"
#include "Program.h"
#include "Sanitizers.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using namespace systemcalls;
using namespace testsupport;

/** Objects that forked processes share with this one. */
template <typename Type> class Shared
{
public:
    Shared()
        : m_memory(::mmap(nullptr, sizeof(Type), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                          -1, 0))
    {
        new (m_memory) Type();
    }
    ~Shared() { ::munmap(m_memory, sizeof(Type)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    Type* operator->() const { return static_cast<Type*>(m_memory); }

private:
    void* m_memory;
};

/** A value that shows when it is not whole. */
std::string valueOf(int number)
{
    const std::string digits = std::to_string(number);
    return digits + ':' + std::string(1500, static_cast<char>('a' + number % 26)) + ':' + digits;
}

/** The number of a value; -1 for an empty one; no value of valueOf fails the test. */
int numberOf(const std::string& value)
{
    const int number = value.empty() ? -1 : std::stoi(value);
    EXPECT_TRUE(value.empty() || value == valueOf(number)) << value;
    return number;
}

class ConfigProcesses : public testing::Test
{
protected:
    const Board board;
    NxuConfig config;
};

TEST_F(ConfigProcesses, SeeWhatOthersSet)
{
    EXPECT_TRUE(config.set("key", "parent"));
    EXPECT_TRUE(holdsInCopy([this] {
        return config.get("key") == "parent" && config.set("key", "child") &&
               config.get("key") == "child";
    }));
    EXPECT_EQ(config.get("key"), "child");
    EXPECT_TRUE(config.set("key", "parent again"));
}

TEST_F(ConfigProcesses, DoNotCollectDescriptorsOverGenerations)
{
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_EQ(config.get("key"), "value");
    const std::size_t descriptors = openDescriptors();
    std::function<bool(int)> generation = [&](int left) {
        const bool isFine = config.get("key") == "value" && openDescriptors() == descriptors;
        return isFine && (left == 0 || holdsInCopy([&] { return generation(left - 1); }));
    };
    EXPECT_TRUE(holdsInCopy([&] { return generation(4); }));
}

TEST_F(ConfigProcesses, CanForkWhileTheirThreadsUseTheStore)
{
    if (!canForkBesideThreads()) {
        GTEST_SKIP() << NoForkBesideThreads;
    }
    EXPECT_TRUE(config.set("key", "value"));
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; !done; ++i) {
            EXPECT_TRUE(NxuConfig().set("thread", valueOf(i)));
        }
    });
    for (int i = 0; i < 25; ++i) {
        EXPECT_TRUE(holdsInCopy(
            [this] { return config.get("key") == "value" && config.set("child", "value"); }));
    }
    done = true;
    writer.join();
    EXPECT_EQ(config.get("child"), "value");
}

TEST_F(ConfigProcesses, DoNotHoldTheLockOfAnotherThatEnded)
{
    // A process forked from a writer lives on when the writer is killed at any moment.
    for (int round = 0; round < 20; ++round) {
        Shared<std::atomic<pid_t>> survivor;
        const pid_t writer = ::fork();
        if (writer == 0) {
            std::thread thread([&] {
                for (int i = 0;; ++i) {
                    NxuConfig().set("key", valueOf(i));
                }
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(round));
            *survivor.operator->() = startCopy([] { return ::pause() == 0; });
            ::pause();
        }
        while (*survivor.operator->() == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ::kill(writer, SIGKILL);
        waitFor(writer);
        EXPECT_TRUE(config.set("other", "value"));
        ::kill(*survivor.operator->(), SIGKILL);
    }
}

/** Takes the lock of those who write the store, as one of them. */
int takeLock(const Board& board)
{
    const std::string path = board.file("settings.lock");
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0200);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    EXPECT_EQ(::fcntl(fd, F_SETLK, &lock), 0);
    return fd;
}

/** Whether a process goes on for some time. */
bool isWaiting(pid_t process)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return ::waitpid(process, nullptr, WNOHANG) == 0;
}

TEST_F(ConfigProcesses, WriteToTheStoreThatTookThePlaceOfTheOneTheyWaitedFor)
{
    EXPECT_TRUE(config.set("key", "old"));
    const int lock = takeLock(board);
    const pid_t writer = startCopy([] { return NxuConfig().set("key", "new"); });
    EXPECT_TRUE(isWaiting(writer));
    EXPECT_EQ(config.get("key"), "old");
    board.write("another", "other=value\n");
    std::filesystem::rename(board.file("another"), board.file("settings"));
    ::close(lock);
    EXPECT_EQ(waitFor(writer), 0);
    EXPECT_EQ(config.get("key"), "new");
    EXPECT_EQ(config.get("other"), "value");
    EXPECT_FALSE(board.has("settings.lock"));
}

TEST_F(ConfigProcesses, WriteWhenTheOneTheyWaitedForIsDone)
{
    const int lock = takeLock(board);
    const pid_t writer = startCopy([] { return NxuConfig().set("key", "new"); });
    EXPECT_TRUE(isWaiting(writer));
    // The others go on with a lock of another file.
    std::filesystem::remove(board.file("settings.lock"));
    EXPECT_EQ(waitFor(writer), 0);
    ::close(lock);
    EXPECT_EQ(config.get("key"), "new");
}

TEST_F(ConfigProcesses, DoNotWaitForEver)
{
    EXPECT_TRUE(config.set("key", "old"));
    const int lock = takeLock(board);
    const pid_t writer = startCopy([] {
        // With each look at the clock it is later.
        std::atomic<int> looks{0};
        hooks().steadyNow = [&] {
            return real().steadyNow() + std::chrono::milliseconds(100) * looks++;
        };
        const auto start = std::chrono::steady_clock::now();
        NxuConfig own;
        std::thread thread([&] { own.set("key", "thread"); });
        const bool isSet = own.set("key", "new");
        thread.join();
        const auto waited = std::chrono::steady_clock::now() - start;
        EXPECT_GE(waited, std::chrono::seconds(10));
        EXPECT_LT(waited, std::chrono::seconds(25)); // the threads' looks add up
        return isSet || testing::Test::HasFailure();
    });
    EXPECT_EQ(waitFor(writer), 1);
    EXPECT_EQ(config.get("key"), "old");
    ::close(lock);
    EXPECT_TRUE(config.set("key", "new"));
}

/** Whether files can get their name later, in that directory. */
bool canNameFilesLater(const Board& board)
{
    const syscalls::FileDescriptor file(
        ::open(board.path().c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600));
    const std::string name = board.file("named");
    const bool isNamed =
        file.isOpen() && ::linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(file.get())).c_str(),
                                  AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    return isNamed && std::filesystem::remove(name);
}

TEST_F(ConfigProcesses, KilledBeforeTheLockIsTheOwnersLeaveNone)
{
    if (!canNameFilesLater(board)) {
        GTEST_SKIP() << "the file system of the board cannot make files that have no name yet";
    }
    EXPECT_TRUE(config.set("key", "old"));
    const pid_t writer = startCopy([] {
        hooks().fchown = [](int, uid_t, gid_t) { return ::raise(SIGKILL); };
        return NxuConfig().set("key", "new");
    });
    EXPECT_EQ(waitFor(writer), 128 + SIGKILL);
    EXPECT_FALSE(board.has("settings.lock"));
    EXPECT_EQ(config.get("key"), "old");
}

TEST_F(ConfigProcesses, LetNobodyElseOpenTheLockBeforeItIsTheOwners)
{
    ::umask(0);
    EXPECT_TRUE(config.set("key", "old"));
    ASSERT_EQ(::chmod(board.file("settings").c_str(), 0664), 0);
    std::set<mode_t> modes;
    hooks().linkat = [](int, const char*, int, const char*, int) { return fail(EPERM); };
    hooks().fchown = [&](int fd, uid_t owner, gid_t group) {
        struct stat status = {};
        EXPECT_EQ(::fstat(fd, &status), 0);
        modes.insert(status.st_mode & 0777U);
        return real().fchown(fd, owner, group);
    };
    EXPECT_TRUE(config.set("key", "new"));
    EXPECT_THAT(modes, testing::ElementsAre(0200U, 0600U)); // of the lock and of the new file
    EXPECT_FALSE(board.has("settings.lock"));
}

TEST_F(ConfigProcesses, MakeOneStoreAtTheSameInstant)
{
    for (int round = 0; round < 10; ++round) {
        Shared<std::atomic<bool>> start;
        std::vector<pid_t> processes;
        for (int i = 0; i < 12; ++i) {
            processes.push_back(startCopy([&start, i] {
                while (!*start.operator->()) {
                }
                return NxuConfig().set("key " + std::to_string(i), valueOf(i));
            }));
        }
        *start.operator->() = true;
        for (const pid_t process : processes) {
            EXPECT_EQ(waitFor(process), 0);
        }
        for (int i = 0; i < 12; ++i) {
            EXPECT_EQ(config.get("key " + std::to_string(i)), valueOf(i));
        }
        EXPECT_FALSE(board.has("settings.new"));
        EXPECT_FALSE(board.has("settings.lock"));
        std::filesystem::remove(board.file("settings"));
    }
}

TEST_F(ConfigProcesses, ReadAndWriteAtOnce)
{
    constexpr int Writes = 20;
    const auto writer = [](int id) {
        bool isFine = true;
        for (int i = 0; i < Writes; ++i) {
            isFine = NxuConfig().set("key " + std::to_string(id), valueOf(i)) && isFine;
            isFine = NxuConfig().set("common", valueOf(i)) && isFine;
        }
        return isFine;
    };
    const auto reader = [](int id) {
        int last = -1;
        bool isFine = true;
        while (last < Writes - 1) {
            const int number = numberOf(NxuConfig().get("key " + std::to_string(id)));
            isFine = isFine && number >= last;
            last = number;
            numberOf(NxuConfig().get("common"));
        }
        return isFine && !testing::Test::HasFailure();
    };
    std::vector<pid_t> processes;
    for (int id = 0; id < 4; ++id) {
        processes.push_back(startCopy([&, id] { return writer(id); }));
        processes.push_back(startCopy([&, id] { return reader(id); }));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(waitFor(process), 0);
    }
    EXPECT_EQ(numberOf(config.get("common")), Writes - 1);
}

/** How far a writer came. */
struct Progress
{
    std::atomic<int> begun{-1};
    std::atomic<int> done{-1};
};

TEST_F(ConfigProcesses, KilledAtAnyMomentLeaveTheOldOrTheNewValue)
{
    std::minstd_rand random(20260729);
    std::uniform_int_distribution<int> microseconds(0, 12000);
    int interrupted = 0;
    for (int round = 0; round < 120; ++round) {
        if (round % 3 == 0) {
            // From time to time the store itself is to be made.
            std::filesystem::remove(board.file("settings"));
        }
        const int old = numberOf(config.get("key"));
        const Shared<Progress> progress;
        const pid_t writer = startCopy([&] {
            for (int i = 0;; ++i) {
                progress->begun = i;
                if (!NxuConfig().set("key", valueOf(i))) {
                    return false;
                }
                progress->done = i;
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        ::kill(writer, SIGKILL);
        ASSERT_EQ(waitFor(writer), 128 + SIGKILL);

        const int begun = progress->begun;
        const int done = progress->done;
        const int before = done == -1 ? old : done;
        const int value = numberOf(config.get("key"));
        EXPECT_TRUE(value == before || value == begun) << before << " " << begun << " " << value;
        interrupted += begun != done ? 1 : 0;
        EXPECT_TRUE(config.set("other", "value"));
        EXPECT_FALSE(board.has("settings.new"));
        EXPECT_FALSE(board.has("settings.lock"));
    }
    EXPECT_GT(interrupted, 20);
}

} // namespace
