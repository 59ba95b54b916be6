// The temporary file: who uses it, who waits for it, what is left of it.

#include "KernelFaults.h"

#include <chrono>
#include <csignal>
#include <cstring>
#include <future>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using firmware::askFile;
using firmware::Course;
using firmware::failed;
using firmware::found;
using firmware::headerAt1000;
using firmware::kernelImage;
using firmware::noise;
using firmware::TemporaryImage;
using firmware::temporaryImageExists;
using recordingtrace::takeLines;
using systemcalls::fail;
using systemcalls::hooks;
using systemcalls::real;
using testing::ElementsAre;
using testsupport::writeFile;

class KernelTemporaryFile : public firmware::KernelFaults
{};

const std::string noTemporaryFile =
    "bsp.core 1 Bsp_getKernelRState(): Could not open tmp file: /dev/shm/zImage_tmp";

TEST_F(KernelTemporaryFile, TheTemporaryFileIsNotOpenedThroughALink)
{
    int flagsOfTemporaryFile = 0;
    hooks().open = [&](const char* path, int flags, mode_t mode) {
        if (std::strcmp(path, TemporaryImage) == 0) {
            flagsOfTemporaryFile = flags;
            return fail(EMFILE);
        }
        EXPECT_EQ(flags & O_ACCMODE, O_RDONLY);
        return real().open(path, flags, mode);
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_TRUE((flagsOfTemporaryFile & O_NOFOLLOW) != 0);
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
}

TEST_F(KernelTemporaryFile, ATemporaryFileThatCannotBeLockedIsNotUsed)
{
    hooks().flock = [](int, int) { return fail(ENOLCK); };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
    // It is not this call's to remove.
    EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
}

TEST_F(KernelTemporaryFile, WaitingForTheTemporaryFileMayBeInterrupted)
{
    int interruptions = 0;
    hooks().flock = [&](int fd, int operation) {
        if (operation == LOCK_EX && ++interruptions < 3) {
            return fail(EINTR);
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(interruptions, 3);
}

TEST_F(KernelTemporaryFile, ATemporaryFileRemovedWhileWaitingIsMadeAnew)
{
    int locks = 0;
    hooks().flock = [&](int fd, int operation) {
        // What the call before did: it removed the file when it had finished.
        if (operation == LOCK_EX && ++locks <= 2) {
            std::filesystem::remove(TemporaryImage);
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(locks, 3);
}

TEST_F(KernelTemporaryFile, ATemporaryFileReplacedWhileWaitingIsLeftToItsOwner)
{
    int locks = 0;
    hooks().flock = [&](int fd, int operation) {
        if (operation == LOCK_EX && ++locks == 1) {
            std::filesystem::remove(TemporaryImage);
            writeFile(TemporaryImage, "the next caller's");
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(locks, 2);
}

TEST_F(KernelTemporaryFile, TheTemporaryFileIsRemovedBeforeTheLockIsGivenUp)
{
    bool unlocked = false;
    hooks().flock = [&](int fd, int operation) {
        if (operation == LOCK_UN) {
            unlocked = true;
            EXPECT_FALSE(temporaryImageExists());
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_TRUE(unlocked);
}

TEST_F(KernelTemporaryFile, ATemporaryFileWithoutAStreamIsRemoved)
{
    hooks().fdopen = [](int, const char* mode) -> std::FILE* {
        EXPECT_STREQ(mode, "w+");
        EXPECT_TRUE(temporaryImageExists());
        errno = ENOMEM;
        return nullptr;
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
}

/** A process that holds the temporary file until it is killed. */
class StuckCaller
{
public:
    explicit StuckCaller(const std::string& image)
    {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        m_process = ::fork();
        if (m_process == 0) {
            // The file is made, locked and partly written when the second chunk is read.
            int reads = 0;
            hooks().read = [&](int fd, void* buffer, std::size_t size) {
                if (++reads == 3) {
                    EXPECT_EQ(::write(ready[1], "r", 1), 1);
                    ::pause();
                }
                return real().read(fd, buffer, size);
            };
            askFile(image);
            ::_exit(1);
        }
        char byte = 0;
        EXPECT_EQ(real().read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~StuckCaller() { kill(); }

    void kill()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
            m_process = 0;
        }
    }

private:
    pid_t m_process = 0;
};

TEST_F(KernelTemporaryFile, AKilledCallerLeavesNothingThatHarms)
{
    writeFile(m_directory.file("other"), kernelImage(noise(200000) + "Linux version 9.9.9.R9Z"));
    {
        const StuckCaller caller(m_directory.file("other"));
    }
    EXPECT_TRUE(temporaryImageExists());
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_FALSE(temporaryImageExists());
}

TEST_F(KernelTemporaryFile, AWaitingCallerGoesOnWhenTheOtherIsKilled)
{
    writeFile(m_directory.file("other"), kernelImage(noise(200000) + "Linux version 9.9.9.R9Z"));
    StuckCaller caller(m_directory.file("other"));
    auto answer = std::async(std::launch::async, [this] { return askAgain(); });
    EXPECT_EQ(answer.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    caller.kill();
    EXPECT_EQ(answer.get(), found("R1A01"));
}

} // namespace
