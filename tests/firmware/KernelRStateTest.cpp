#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "RealImages.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using namespace testing;
using namespace testsupport;

/** The number that the next opened descriptor gets. */
std::string nextDescriptor()
{
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(fd);
    return std::to_string(fd);
}

TEST(KernelRState, TracesAllStepsOnARealKernel)
{
    const std::string fd = nextDescriptor();
    EXPECT_EQ(askFile(realKernel), found("R1A01"));
    EXPECT_EQ(takeLines(), courseOfRealKernel(fd));
    EXPECT_FALSE(temporaryImageExists());
}

TEST(KernelRState, RefusesRoomForFewerThanEightBytes)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("zImage"), kernelImage(kernel));
    const std::string name = directory.file("zImage");
    for (const unsigned int size : {0U, 1U, 7U}) {
        char rstate[8] = "before";
        EXPECT_EQ(Bsp_getKernelRState(name.c_str(), rstate, size), -1);
        EXPECT_STREQ(rstate, "before");
        EXPECT_THAT(takeLines(),
                    ElementsAre("bsp.core 6 ENTER Bsp_getKernelRState(" + name + ")",
                                "bsp.core 1 Bsp_getKernelRState(): Invalid buffer size: " +
                                    std::to_string(size)));
    }
    for (const unsigned int size : {8U, 9U, 4000000000U}) {
        char rstate[9] = "before";
        EXPECT_EQ(Bsp_getKernelRState(name.c_str(), rstate, size), 0);
        EXPECT_STREQ(rstate, "R1A01");
    }
}

TEST(KernelRState, RefusesNoFileName)
{
    char rstate[8] = "before";
    EXPECT_EQ(Bsp_getKernelRState(nullptr, rstate, 8), -1);
    EXPECT_STREQ(rstate, "before");
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER Bsp_getKernelRState((null))",
                                         "bsp.core 1 Bsp_getKernelRState(): Undefined filename"));
}

TEST(KernelRState, LooksAtTheRoomBeforeTheFileName)
{
    char rstate[8] = "before";
    EXPECT_EQ(Bsp_getKernelRState(nullptr, rstate, 7), -1);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.core 6 ENTER Bsp_getKernelRState((null))",
                            "bsp.core 1 Bsp_getKernelRState(): Invalid buffer size: 7"));
}

TEST(KernelRState, ReportsAFileThatCannotBeOpened)
{
    for (const std::string name : {"/no/such/image", ""}) {
        expectCourse(askFile(name), failed(),
                     {"bsp.core 1 Bsp_getKernelRState(): Could not open file: " + name});
    }
}

TEST(KernelRState, ReportsAFileThatCannotBePositioned)
{
    const TemporaryDirectory directory;
    const std::string pipe = directory.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int otherEnd = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    expectCourse(
        askFile(pipe), failed(),
        {"bsp.core 1 Bsp_getKernelRState(): lseek(zImage, 0, SEEK_SET) failed for " + pipe});
    ::close(otherEnd);
}

TEST(KernelRState, ReportsAFileThatCannotBeRead)
{
    const TemporaryDirectory directory;
    const std::string error =
        "bsp.core 1 Bsp_findArchive(): File error before archive found. read() returned ";
    expectCourse(askFile(directory.path()), failed(), {error + "-1"});
    expectCourse(ask(""), failed(), {error + "0"});
}

TEST(KernelRState, ReportsAnImageWithoutAnArchive)
{
    expectCourse(ask(noise(100000)), failed(), {noHeader});
}

TEST(KernelRState, LeavesTheTemporaryFilesNameAloneBeforeItNeedsTheFile)
{
    const TemporaryDirectory directory;
    writeFile(TemporaryImage, "somebody's");
    EXPECT_EQ(askFile("/no/such/image"), failed());
    EXPECT_EQ(askFile(directory.path()), failed());
    EXPECT_EQ(ask(""), failed());
    EXPECT_EQ(ask("no archive"), failed());
    EXPECT_EQ(readFile(TemporaryImage), "somebody's");
    EXPECT_EQ(takeLines(1).size(), 4U);
}

TEST(KernelRState, TakesOverATemporaryFileThatWasLeftBehind)
{
    // Were it not emptied, its banner would be found.
    writeFile(TemporaryImage, noise(50000) + "Linux version 9.9.9.R9Z99");
    EXPECT_EQ(ask(kernelImage(noise(10000))), failed());
    EXPECT_FALSE(temporaryImageExists());
    EXPECT_THAT(takeLines(1), ElementsAre(noVersion));

    writeFile(TemporaryImage, noise(50000));
    EXPECT_EQ(ask(kernelImage(kernel)), found("R1A01"));
    EXPECT_FALSE(temporaryImageExists());
}

/** What somebody may have planted under the temporary file's name. */
class KernelRStatePlanted : public Test
{
protected:
    /** The call fails and leaves what is there as it is. */
    static void expectRefused()
    {
        struct stat before = {};
        struct stat after = {};
        ASSERT_EQ(::lstat(TemporaryImage, &before), 0);
        const auto descriptors = openDescriptors();
        EXPECT_EQ(ask(kernelImage(kernel)), failed());
        EXPECT_EQ(openDescriptors(), descriptors);
        ASSERT_EQ(::lstat(TemporaryImage, &after), 0);
        EXPECT_EQ(before.st_ino, after.st_ino);
        EXPECT_EQ(before.st_mode, after.st_mode);
        EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
    }

    const TemporaryDirectory m_directory;
};

TEST_F(KernelRStatePlanted, SymbolicLinkIsNotFollowed)
{
    writeFile(m_directory.file("victim"), "precious");
    std::filesystem::create_symlink(m_directory.file("victim"), TemporaryImage);
    expectRefused();
    EXPECT_EQ(readFile(m_directory.file("victim")), "precious");
}

TEST_F(KernelRStatePlanted, SymbolicLinkToNothingMakesNothing)
{
    std::filesystem::create_symlink(m_directory.file("victim"), TemporaryImage);
    expectRefused();
    EXPECT_FALSE(std::filesystem::exists(m_directory.file("victim")));
}

TEST_F(KernelRStatePlanted, EmptyDirectoryStays)
{
    std::filesystem::create_directory(TemporaryImage);
    expectRefused();
}

TEST_F(KernelRStatePlanted, PipeStays)
{
    ASSERT_EQ(::mkfifo(TemporaryImage, 0600), 0);
    expectRefused();
}

TEST_F(KernelRStatePlanted, SocketStays)
{
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, TemporaryImage);
    ASSERT_EQ(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expectRefused();
    ::close(fd);
}

TEST(KernelRState, SurvivesTheTemporaryFileAsItsImage)
{
    writeFile(TemporaryImage, kernelImage(kernel));
    expectCourse(askFile(TemporaryImage), failed(), {headerAt1000, endOfFile});
    EXPECT_FALSE(temporaryImageExists());
}

TEST(KernelRState, ReadsNothingOfASparseImageButItsBeginning)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("zImage"), kernelImage(kernel));
    std::filesystem::resize_file(directory.file("zImage"), std::uintmax_t{1} << 40U);
    EXPECT_EQ(askFile(directory.file("zImage")), found("R1A01"));

    writeFile(directory.file("zImage"), "");
    std::filesystem::resize_file(directory.file("zImage"), std::uintmax_t{1} << 40U);
    EXPECT_EQ(askFile(directory.file("zImage")), failed());
    EXPECT_THAT(takeLines(1), ElementsAre(noHeader));
}

TEST(KernelRState, FormatsNothingWhileTheChannelIsOff)
{
    recordingtrace::setLevel("bsp.core", 0);
    EXPECT_EQ(askFile(realKernel), found("R1A01"));
    EXPECT_EQ(askFile("/no/such/image"), failed());
    recordingtrace::setActive("bsp.core", false);
    EXPECT_EQ(askFile(realKernel), found("R1A01"));
    EXPECT_EQ(askFile("/no/such/image"), failed());
    recordingtrace::setActive("bsp.core", true);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(KernelRState, KeepsTheErrnoOfAFailedOpen)
{
    errno = 0;
    EXPECT_EQ(askFile("/no/such/image"), failed());
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(takeLines(1).size(), 1U);
}

TEST(KernelRState, LeaksNothingHoweverOftenItFails)
{
    recordingtrace::setLevel("bsp.core", 0);
    const TemporaryDirectory directory;
    const std::string whole = kernelImage(noise(20000));
    const std::vector<std::string> images{
        "",
        "no archive",
        std::string(1000, 'c') + "\x1F\x8B\x08garbage, which is no stream",
        whole.substr(0, 5000),
        whole,
        kernelImage(""),
    };
    for (std::size_t i = 0; i < images.size(); ++i) {
        writeFile(directory.file(std::to_string(i)), images[i]);
    }
    const auto before = openDescriptors();
    for (int round = 0; round < 1000; ++round) {
        ASSERT_EQ(askFile("/no/such/image"), failed());
        ASSERT_EQ(askFile(directory.path()), failed());
        for (std::size_t i = 0; i < images.size(); ++i) {
            ASSERT_EQ(askFile(directory.file(std::to_string(i))), failed());
        }
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(temporaryImageExists());
    EXPECT_FALSE(temporaryImageIsMapped());
}

} // namespace
