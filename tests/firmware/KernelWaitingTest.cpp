// The temporary file's name is taken: who is waited for, for how long, and what happens then.

#include "KernelFaults.h"
#include "Waiting.h"

#include <chrono>
#include <future>
#include <memory>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using std::chrono::milliseconds;
using std::chrono::seconds;
using namespace systemcalls;
using namespace testing;
using namespace testsupport;

/** Somebody's file of the temporary file's name, open. */
class SomebodysFile
{
public:
    SomebodysFile() : m_fd(real().open(TemporaryImage, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666))
    {
        EXPECT_EQ(::write(m_fd, planted.data(), planted.size()),
                  static_cast<ssize_t>(planted.size()));
    }
    ~SomebodysFile() { ::close(m_fd); }
    SomebodysFile(const SomebodysFile&) = delete;
    SomebodysFile& operator=(const SomebodysFile&) = delete;

    void lock() const { EXPECT_EQ(real().flock(m_fd, LOCK_EX | LOCK_NB), 0); }
    void unlock() const { EXPECT_EQ(real().flock(m_fd, LOCK_UN), 0); }
    /** What a call does at its end. */
    void removeAndUnlock() const
    {
        EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
        unlock();
    }
    std::string contents() const { return readFile("/proc/self/fd/" + std::to_string(m_fd)); }

private:
    const int m_fd;
};

class KernelWaiting : public KernelFaults
{
protected:
    /** Whatever is there is another user's. */
    static void beAnotherUser()
    {
        hooks().geteuid = [] { return ::getuid() + 1; };
    }
    /** In a sticky directory only root, and the directory's owner, remove what is another's. */
    static void forbidRemoving()
    {
        hooks().unlink = [](const char* path) {
            EXPECT_STREQ(path, TemporaryImage);
            return fail(EPERM);
        };
    }
    /** Neither used nor changed. */
    static void expectItIsStillThere(const SomebodysFile& file)
    {
        EXPECT_EQ(readFile(TemporaryImage), planted);
        EXPECT_EQ(file.contents(), planted);
        EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
    }
};

/** There is another user's file, and a clock that goes on while it is waited for. */
class KernelWaitingForAnother : public KernelWaiting
{
protected:
    KernelWaitingForAnother() { beAnotherUser(); }

    FakeTime time;
    const SomebodysFile his;
};

TEST_F(KernelWaitingForAnother, ForACallThatEndsInTime)
{
    forbidRemoving();
    his.lock();
    time.whileAsleep = [&] {
        if (time.passed() >= seconds(9) && temporaryImageExists()) {
            his.removeAndUnlock();
            hooks().unlink = nullptr;
        }
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(time.passed(), AllOf(Ge(seconds(9)), Le(milliseconds(9010))));
}

TEST_F(KernelWaitingForAnother, EndsAfterTenSeconds)
{
    forbidRemoving();
    his.lock();
    expectNoTemporaryFile();
    time.expectTenSeconds();
    // Often enough to notice the end at once, seldom enough to leave the processor to others.
    EXPECT_THAT(time.sleeps(), AllOf(Ge(1000), Le(10000)));
    expectItIsStillThere(his);
}

TEST_F(KernelWaitingForAnother, EndsAfterTenSecondsForOneWhoMayReplaceTheFile)
{
    his.lock();
    EXPECT_EQ(askAgain(), found("R1A01"));
    time.expectTenSeconds();
    EXPECT_EQ(his.contents(), planted);
}

TEST_F(KernelWaiting, EndsAfterTenSecondsForOnesOwnFileToo)
{
    // A process of one's own that is stopped; or another user who has locked what one of them left.
    FakeTime time;
    const SomebodysFile own;
    own.lock();
    EXPECT_EQ(askAgain(), found("R1A01"));
    time.expectTenSeconds();
    EXPECT_EQ(own.contents(), planted);
}

TEST_F(KernelWaiting, EndsHoweverOftenTheFileComesBack)
{
    FakeTime time;
    std::unique_ptr<SomebodysFile> his = std::make_unique<SomebodysFile>();
    his->lock();
    hooks().unlink = [&](const char* path) {
        EXPECT_EQ(real().unlink(path), 0);
        his = std::make_unique<SomebodysFile>();
        his->lock();
        return 0;
    };
    expectNoTemporaryFile();
    EXPECT_THAT(time.passed(), Le(milliseconds(10010)));
    expectItIsStillThere(*his);
}

TEST_F(KernelWaiting, EndsHoweverOftenSomebodyElseLocksFirst)
{
    FakeTime time;
    hooks().flock = [&](int fd, int operation) {
        return operation == LOCK_UN ? real().flock(fd, operation) : fail(EWOULDBLOCK);
    };
    EXPECT_EQ(askAgain(), failed());
    // Once per millisecond, and a hundred times from the tenth second on.
    EXPECT_EQ(time.passed(), milliseconds(10099));
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
}

TEST_F(KernelWaitingForAnother, IsForALeaseToo)
{
    // The open fails as the lock of another does.
    hooks().open = [](const char* path, int flags, mode_t mode) {
        const bool hasLease = path == std::string(TemporaryImage) && (flags & O_CREAT) == 0;
        return hasLease ? fail(EWOULDBLOCK) : real().open(path, flags, mode);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    time.expectTenSeconds();
    EXPECT_EQ(his.contents(), planted);
}

TEST_F(KernelWaitingForAnother, IsNotForAFileThatNobodyUses)
{
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(time.sleeps(), 0);
    EXPECT_EQ(his.contents(), planted);
}

TEST_F(KernelWaitingForAnother, IsShortForAFileThatNobodyUsesNorMayBeReplaced)
{
    forbidRemoving();
    expectNoTemporaryFile();
    EXPECT_EQ(time.passed(), seconds(1));
    expectItIsStillThere(his);
}

TEST_F(KernelWaitingForAnother, IsForAFileThatIsBeingMade)
{
    forbidRemoving();
    bool isLocked = false;
    time.whileAsleep = [&] {
        // His process has not had its turn before.
        if (!isLocked && time.passed() >= milliseconds(500)) {
            his.lock();
            isLocked = true;
        } else if (time.passed() >= seconds(2) && temporaryImageExists()) {
            his.removeAndUnlock();
            hooks().unlink = nullptr;
        }
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(time.passed(), AllOf(Ge(seconds(2)), Le(milliseconds(2050))));
}

TEST_F(KernelWaiting, IsForTheNextCallToo)
{
    FakeTime time;
    beAnotherUser();
    forbidRemoving();
    auto his = std::make_unique<SomebodysFile>();
    time.whileAsleep = [&] {
        // While it is looked at once more, that call ends and another begins.
        if (time.sleeps() == 1) {
            EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
            his = std::make_unique<SomebodysFile>();
            his->lock();
        } else if (temporaryImageExists()) {
            his->removeAndUnlock();
            hooks().unlink = nullptr;
        }
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(time.sleeps(), 2);
}

TEST_F(KernelWaiting, SparesAFileOfTwoNames)
{
    // It may be one's own file elsewhere, of which somebody has made a link.
    const SomebodysFile own;
    const std::string other = "/dev/shm/bsp-test-other-name";
    std::filesystem::create_hard_link(TemporaryImage, other);
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(readFile(other), planted);
    EXPECT_TRUE(std::filesystem::remove(other));
}

TEST_F(KernelWaiting, LooksAgainWhenAnotherFileHasTakenThePlace)
{
    beAnotherUser();
    const SomebodysFile his;
    std::unique_ptr<SomebodysFile> own;
    hooks().open = [&](const char* path, int flags, mode_t mode) {
        if (path == std::string(TemporaryImage) && (flags & O_CREAT) == 0 && own == nullptr) {
            EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
            own = std::make_unique<SomebodysFile>();
            hooks().geteuid = nullptr;
        }
        return real().open(path, flags, mode);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(his.contents(), planted);
}

TEST_F(KernelWaiting, IsNotForAFileThatCannotBeLookedAt)
{
    const FakeTime time;
    const SomebodysFile his;
    int looks = 0;
    hooks().fstat = [&](int fd, struct stat* status) {
        return ++looks == 1 ? fail(EIO) : real().fstat(fd, status);
    };
    expectNoTemporaryFile();
    EXPECT_EQ(time.sleeps(), 0);
    expectItIsStillThere(his);
}

TEST_F(KernelWaiting, IsNotForAnotherUsersPipe)
{
    // Opening it would wake whoever waits for a reader.
    beAnotherUser();
    ASSERT_EQ(::mkfifo(TemporaryImage, 0666), 0);
    hooks().open = [](const char* path, int flags, mode_t mode) {
        EXPECT_TRUE(path != std::string(TemporaryImage) || (flags & O_CREAT) != 0);
        return real().open(path, flags, mode);
    };
    expectNoTemporaryFile();
    EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
}

TEST_F(KernelWaiting, EmptiesWhatOneLeftBehind)
{
    const SomebodysFile own;
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(own.contents(), "");
}

TEST_F(KernelWaiting, DisturbsNoneOfTheTwo)
{
    const FakeTime time;
    const std::string other = makeOtherImage();
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        // The first call, half-way, is so slow that another one replaces its file.
        if (++reads == 4) {
            EXPECT_EQ(askFile(other), found("R9Z"));
            EXPECT_THAT(time.passed(), Ge(seconds(10)));
            writeFile(TemporaryImage, "the next caller's");
        }
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(readFile(TemporaryImage), "the next caller's");
    EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
}

TEST_F(KernelWaiting, IsNotForAKilledCall)
{
    {
        const StuckCaller caller(makeOtherImage());
    }
    EXPECT_TRUE(temporaryImageExists());
    const FakeTime time;
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(time.sleeps(), 0);
    EXPECT_FALSE(temporaryImageExists());
}

TEST_F(KernelWaiting, EndsWhenTheOtherIsKilled)
{
    StuckCaller caller(makeOtherImage());
    auto answer = std::async(std::launch::async, [this] { return askAgain(); });
    EXPECT_EQ(answer.wait_for(milliseconds(200)), std::future_status::timeout);
    caller.kill();
    EXPECT_EQ(answer.get(), found("R1A01"));
}

} // namespace
