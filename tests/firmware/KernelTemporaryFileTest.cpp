// The temporary file: how it is made, who uses it, what is left of it.

#include "KernelFaults.h"

#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using namespace systemcalls;
using testing::ElementsAre;
using testsupport::writeFile;

class KernelTemporaryFile : public KernelFaults
{
protected:
    /** Asks, to no avail, while somebody's file is there, which stays as it is. */
    void expectSpared(const std::string& contents = "somebody's") const
    {
        writeFile(TemporaryImage, contents);
        expectNoTemporaryFile();
        EXPECT_EQ(testsupport::readFile(TemporaryImage), contents);
        std::filesystem::remove(TemporaryImage);
    }
};

constexpr int AnyOpen = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int Making = AnyOpen | O_RDWR | O_CREAT | O_EXCL;

TEST_F(KernelTemporaryFile, IsMadeByTheCallThatUsesIt)
{
    std::vector<int> flagsOfAll;
    hooks().open = [&](const char* path, int flags, mode_t mode) {
        if (std::strcmp(path, TemporaryImage) == 0) {
            flagsOfAll.push_back(flags);
            EXPECT_EQ((flags & O_CREAT) != 0 ? mode : 0644U, 0644U);
        } else {
            EXPECT_EQ(flags, O_RDONLY | O_CLOEXEC);
        }
        return real().open(path, flags, mode);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(flagsOfAll, ElementsAre(Making));

    flagsOfAll.clear();
    writeFile(TemporaryImage, "left behind");
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(flagsOfAll, ElementsAre(Making, AnyOpen | O_RDWR, Making));

    flagsOfAll.clear();
    writeFile(TemporaryImage, "another user's");
    hooks().geteuid = [] { return ::getuid() + 1; };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(flagsOfAll, ElementsAre(Making, AnyOpen | O_RDONLY, Making));
}

TEST_F(KernelTemporaryFile, CanBeWrittenByItsUserAlone)
{
    mode_t mode = 0;
    hooks().fdopen = [&](int fd, const char* text) {
        struct stat file = {};
        EXPECT_EQ(real().fstat(fd, &file), 0);
        mode = file.st_mode;
        return real().fdopen(fd, text);
    };
    const mode_t before = ::umask(0);
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(mode, S_IFREG | 0644U);
    // One that somebody else might have open for writing.
    writeFile(TemporaryImage, "");
    EXPECT_EQ(::chmod(TemporaryImage, 0666), 0);
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(mode, S_IFREG | 0644U);
    ::umask(077);
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(mode, S_IFREG | 0600U);
    ::umask(before);
}

TEST_F(KernelTemporaryFile, ARefusedOpenEndsTheCall)
{
    for (const bool exists : {false, true}) {
        for (const int error : {EACCES, EPERM, EROFS, ENOSPC, EDQUOT, EMFILE, ENFILE, ENOMEM, ELOOP,
                                ENXIO, EINVAL, EIO})
        {
            SCOPED_TRACE(std::strerror(error));
            int refusals = 0;
            hooks().open = [&](const char* path, int flags, mode_t mode) {
                const bool isRefused =
                    std::strcmp(path, TemporaryImage) == 0 && ((flags & O_CREAT) == 0) == exists;
                if (isRefused && ++refusals > 1) {
                    throw std::runtime_error("tried once more");
                }
                return isRefused ? fail(error) : real().open(path, flags, mode);
            };
            exists ? expectSpared() : expectNoTemporaryFile();
            EXPECT_EQ(refusals, 1);
        }
    }
}

TEST_F(KernelTemporaryFile, OneThatCannotBeLockedIsNotUsedAndLeavesNothing)
{
    int locks = 0;
    hooks().flock = [&](int, int operation) {
        locks += operation == LOCK_UN ? 0 : 1;
        return fail(ENOLCK);
    };
    expectNoTemporaryFile();
    EXPECT_EQ(locks, 1);
    EXPECT_FALSE(temporaryImageExists());
    // What is there already is not this call's to remove.
    expectSpared();
    EXPECT_EQ(locks, 2);
}

TEST_F(KernelTemporaryFile, OneThatCannotBeLookedAtIsNotUsedAndLeavesNothing)
{
    hooks().fstat = [](int, struct stat*) { return fail(EIO); };
    expectNoTemporaryFile();
    EXPECT_FALSE(temporaryImageExists());
    expectSpared();
}

TEST_F(KernelTemporaryFile, OneOfItsOwnThatCannotBeEmptiedIsNotUsedAndStays)
{
    int tries = 0;
    hooks().ftruncate = [&](int, off_t) {
        ++tries;
        return fail(EIO);
    };
    expectSpared("left behind");
    EXPECT_EQ(tries, 1);
}

TEST_F(KernelTemporaryFile, ANameThatCannotBeLookedAtEndsTheCall)
{
    hooks().lstat = [](const char*, struct stat*) { return fail(EIO); };
    expectSpared("left behind");
}

TEST_F(KernelTemporaryFile, ANameThatIsNoFilesIsLookedAtOnce)
{
    std::filesystem::create_directory(TemporaryImage);
    int looks = 0;
    hooks().lstat = [&](const char* path, struct stat* status) {
        ++looks;
        return real().lstat(path, status);
    };
    expectNoTemporaryFile();
    EXPECT_EQ(looks, 1);
    std::filesystem::remove(TemporaryImage);
}

TEST_F(KernelTemporaryFile, ANameThatIsGoneMeanwhileIsMadeAnew)
{
    writeFile(TemporaryImage, "left behind");
    hooks().lstat = [looks = 0](const char* path, struct stat* status) mutable {
        if (++looks == 1) {
            std::filesystem::remove(path);
        }
        return real().lstat(path, status);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
}

TEST_F(KernelTemporaryFile, LockingItMayBeInterrupted)
{
    int interruptions = 0;
    hooks().flock = [&](int fd, int operation) {
        if (operation == (LOCK_EX | LOCK_NB) && ++interruptions < 3) {
            return fail(EINTR);
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(interruptions, 3);
}

TEST_F(KernelTemporaryFile, OneRemovedBeforeItIsLockedIsMadeAnew)
{
    int locks = 0;
    hooks().flock = [&](int fd, int operation) {
        if (operation != LOCK_UN && ++locks <= 2) {
            std::filesystem::remove(TemporaryImage);
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(locks, 3);
}

TEST_F(KernelTemporaryFile, OneReplacedBeforeItIsLockedIsLeftToItsOwner)
{
    int next = -1;
    hooks().flock = [&](int fd, int operation) {
        if (next == -1) {
            std::filesystem::remove(TemporaryImage);
            next = real().open(TemporaryImage, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
            EXPECT_EQ(::write(next, "his", 3), 3);
            EXPECT_EQ(real().flock(next, LOCK_EX), 0);
        }
        return real().flock(fd, operation);
    };
    hooks().nanosleep = [&](const timespec*, timespec*) {
        EXPECT_EQ(testsupport::readFile(TemporaryImage), "his");
        std::filesystem::remove(TemporaryImage);
        return ::close(next);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_NE(next, -1);
}

TEST_F(KernelTemporaryFile, OneWhoseLockSomebodyElseTookFirstIsMadeAnew)
{
    int thief = -1;
    hooks().flock = [&](int fd, int operation) {
        if (thief == -1) {
            thief = real().open(TemporaryImage, O_RDONLY | O_CLOEXEC, 0);
            EXPECT_EQ(real().flock(thief, LOCK_EX), 0);
        }
        return real().flock(fd, operation);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(::close(thief), 0);
}

TEST_F(KernelTemporaryFile, IsRemovedBeforeTheLockIsGivenUp)
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

TEST_F(KernelTemporaryFile, OneWithoutAStreamIsRemoved)
{
    hooks().fdopen = [](int, const char* mode) -> std::FILE* {
        EXPECT_STREQ(mode, "w+");
        EXPECT_TRUE(temporaryImageExists());
        errno = ENOMEM;
        return nullptr;
    };
    expectNoTemporaryFile();
}

} // namespace
