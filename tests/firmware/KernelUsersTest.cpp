// Several users want the temporary file. Each case needs root, who can be anybody.

#include "KernelFaults.h"
#include "Namespaces.h"
#include "OtherUser.h"
#include "Waiting.h"

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using std::chrono::milliseconds;
using std::chrono::seconds;
using systemcalls::real;
using namespace testing;
using namespace testsupport;

constexpr uid_t Nobody = 65534;
constexpr uid_t Another = 65533;

/** Does something in a process of that user's. */
pid_t start(uid_t user, const std::function<bool()>& action)
{
    return startCopy([=] {
        const bool isDone = become(user) && action() && !testing::Test::HasFailure();
        std::cout.flush();
        return isDone;
    });
}

bool hasDone(pid_t process)
{
    return waitFor(process) == 0;
}

bool does(uid_t user, const std::function<bool()>& action)
{
    return hasDone(start(user, action));
}

bool plant()
{
    const int fd = real().open(TemporaryImage, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    return fd != -1 && ::write(fd, planted.data(), planted.size()) != -1 && ::close(fd) == 0;
}

/** A file that a process of that user's has made and keeps locked. */
class LockedFile
{
public:
    explicit LockedFile(uid_t user)
    {
        std::array<int, 2> ready{};
        EXPECT_EQ(::pipe(ready.data()), 0);
        m_process = start(user, [&ready] {
            const int fd = plant() ? real().open(TemporaryImage, O_RDONLY | O_CLOEXEC, 0) : -1;
            if (real().flock(fd, LOCK_EX | LOCK_NB) == 0) {
                EXPECT_EQ(::write(ready[1], "r", 1), 1);
                ::pause();
            }
            return false;
        });
        ::close(ready[1]);
        char byte = 0;
        EXPECT_EQ(real().read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
        m_file = real().open(TemporaryImage, O_RDONLY | O_CLOEXEC, 0);
    }
    ~LockedFile()
    {
        ::kill(m_process, SIGKILL);
        EXPECT_FALSE(hasDone(m_process));
        ::close(m_file);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    std::string contents() const { return readFile("/proc/self/fd/" + std::to_string(m_file)); }

private:
    pid_t m_process = 0;
    int m_file = -1;
};

class KernelUsers : public KernelFaults
{
protected:
    KernelUsers()
    {
        std::filesystem::permissions(m_directory.path(), std::filesystem::perms(0755));
    }
    void SetUp() override
    {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can be several users";
        }
        // As it is on every machine.
        std::filesystem::permissions("/dev/shm", std::filesystem::perms(01777));
        if (!does(Nobody, [this] { return plant() && ::access(m_image.c_str(), R_OK) == 0; })) {
            // Without CAP_SYS_PTRACE proot cannot read the paths of who becomes another user.
            GTEST_SKIP() << (haveNamespaces() ? "" : NoNamespaces)
                         << "another user cannot make files in /dev/shm here";
        }
        EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
    }

    /** Fails and leaves the file that is there alone. */
    bool isRefused() const
    {
        expectNoTemporaryFile();
        return temporaryImageExists();
    }

    const std::string m_other = makeOtherImage();
};

TEST_F(KernelUsers, AllGetTheirAnswerAtTheSameTime)
{
    recordingtrace::setLevel("bsp.core", 0);
    std::vector<pid_t> processes;
    for (const uid_t user : {Nobody, Another, uid_t{0}, Nobody, Another, uid_t{0}}) {
        const bool isOther = processes.size() % 2 == 0;
        processes.push_back(start(user, [&] {
            for (int round = 0; round < 40; ++round) {
                EXPECT_EQ(askFile(isOther ? m_other : m_image), found(isOther ? "R9Z" : "R1A01"));
            }
            return true;
        }));
    }
    for (const pid_t process : processes) {
        EXPECT_TRUE(hasDone(process));
    }
}

TEST_F(KernelUsers, WaitForEachOther)
{
    for (const uid_t first : {uid_t{0}, Nobody}) {
        for (const uid_t second : {uid_t{0}, Another}) {
            StuckCaller caller(m_other, [first] {
                if (!become(first)) {
                    ::_exit(1);
                }
            });
            const pid_t waiting = start(second, [this] { return askAgain() == found("R1A01"); });
            std::this_thread::sleep_for(milliseconds(200));
            EXPECT_EQ(::waitpid(waiting, nullptr, WNOHANG), 0);
            EXPECT_TRUE(caller.finish());
            EXPECT_TRUE(hasDone(waiting));
        }
    }
}

TEST_F(KernelUsers, RootReplacesWhatAnotherLeftBehind)
{
    ASSERT_TRUE(does(Nobody, [] { return plant(); }));
    const int his = real().open(TemporaryImage, O_RDONLY | O_CLOEXEC, 0);
    const FakeTime time;
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(time.sleeps(), 0);
    EXPECT_EQ(readFile("/proc/self/fd/" + std::to_string(his)), planted);
    ::close(his);
}

TEST_F(KernelUsers, RootReplacesWhatAnotherKeepsLocked)
{
    const LockedFile his(Nobody);
    const FakeTime time;
    EXPECT_EQ(askAgain(), found("R1A01"));
    time.expectTenSeconds();
    EXPECT_EQ(his.contents(), planted);
}

TEST_F(KernelUsers, OthersCannotReplaceWhatOneLeftBehind)
{
    for (const uid_t user : {uid_t{0}, Another}) {
        ASSERT_TRUE(does(user, [] { return plant(); }));
        EXPECT_TRUE(does(Nobody, [this] {
            const FakeTime time;
            return isRefused() && time.passed() <= seconds(1);
        }));
        EXPECT_EQ(readFile(TemporaryImage), planted);
        EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
    }
}

TEST_F(KernelUsers, OthersWaitTenSecondsForWhatOneKeepsLocked)
{
    for (const uid_t user : {uid_t{0}, Another}) {
        const LockedFile file(user);
        EXPECT_TRUE(does(Nobody, [this] {
            const FakeTime time;
            return isRefused() && time.passed() >= seconds(10) &&
                   time.passed() <= milliseconds(10010);
        }));
        EXPECT_EQ(readFile(TemporaryImage), planted);
        EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
    }
}

TEST_F(KernelUsers, OthersCannotWaitForWhatTheyMayNotRead)
{
    ASSERT_TRUE(does(Another, [] { return plant() && ::chmod(TemporaryImage, 0600) == 0; }));
    EXPECT_TRUE(does(Nobody, [this] {
        const FakeTime time;
        return isRefused() && time.sleeps() == 0;
    }));
    EXPECT_EQ(askAgain(), found("R1A01"));
}

TEST_F(KernelUsers, NobodyChangesAnAnswerOfRoot)
{
    recordingtrace::setLevel("bsp.core", 0);
    const pid_t attacker = start(Nobody, [] {
        for (;;) {
            const int fd = real().open(TemporaryImage, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
            for (int i = 0; fd != -1 && i < 10; ++i) {
                EXPECT_NE(::pwrite(fd, planted.data(), planted.size(), 0), -1);
                EXPECT_EQ(::ftruncate(fd, 0), 0);
            }
            ::close(fd);
        }
        return false;
    });
    for (int round = 0; round < 300; ++round) {
        EXPECT_EQ(askAgain(), found("R1A01"));
    }
    ::kill(attacker, SIGKILL);
    EXPECT_FALSE(hasDone(attacker));
    std::filesystem::remove(TemporaryImage);
}

} // namespace
