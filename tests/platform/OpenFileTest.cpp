#include "OpenFile.h"
#include "Files.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include <unistd.h>

namespace
{

bool isFree(int fd)
{
    return ::fcntl(fd, F_GETFD) == -1 && errno == EBADF;
}

/** Whether the check holds in a process that has none of these descriptors. */
bool holdsWithout(const std::vector<int>& descriptors, const std::function<bool()>& check)
{
    return testsupport::holdsInCopy([&] {
        for (const int fd : descriptors) {
            ::close(fd);
        }
        return check();
    });
}

TEST(OpenFile, KeepsOffTheStandardStreamsDescriptors)
{
    const std::vector<std::vector<int>> missing = {{}, {0}, {1}, {2}, {0, 2}, {0, 1, 2}};
    for (const std::vector<int>& descriptors : missing) {
        EXPECT_TRUE(holdsWithout(descriptors, [&] {
            const syscalls::FileDescriptor file = openFile("/dev/null", O_RDONLY);
            bool isFine = file.get() > STDERR_FILENO;
            for (const int fd : descriptors) {
                isFine = isFine && isFree(fd);
            }
            return isFine;
        })) << descriptors.size();
    }
}

TEST(OpenFile, LeavesNoOtherDescriptorOpen)
{
    EXPECT_TRUE(holdsWithout({0, 1, 2}, [] {
        const int first = openFile("/dev/null", O_RDONLY).get();
        const int second = openFile("/dev/null", O_RDONLY).get();
        return second == first && isFree(first);
    }));
}

TEST(OpenFile, IsNotForTheProgramsThatThisProcessStarts)
{
    const syscalls::FileDescriptor file = openFile("/dev/null", O_RDONLY);
    EXPECT_EQ(::fcntl(file.get(), F_GETFD), FD_CLOEXEC);
}

TEST(OpenFile, MakesFilesBelowADirectory)
{
    const testsupport::TemporaryDirectory directory;
    const syscalls::FileDescriptor parent = openFile(directory.path(), O_RDONLY | O_DIRECTORY);
    {
        const syscalls::FileDescriptor file =
            openFileAt(parent.get(), "file", O_WRONLY | O_CREAT | O_EXCL, 0600);
        EXPECT_EQ(::write(file.get(), "text", 4), 4);
    }
    EXPECT_EQ(testsupport::readFile(directory.file("file")), "text");
    EXPECT_EQ(std::filesystem::status(directory.file("file")).permissions(),
              std::filesystem::perms(0600));
}

TEST(OpenFile, SaysWhyItFails)
{
    errno = 0;
    EXPECT_FALSE(openFile("/nowhere/file", O_RDONLY).isOpen());
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(holdsWithout({0, 1, 2}, [] {
        return !openFile("/nowhere/file", O_RDONLY).isOpen() && errno == ENOENT;
    }));
}

} // namespace
