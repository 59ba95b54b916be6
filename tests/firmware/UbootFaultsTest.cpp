// What keeps a boot loader from being read.

#include "Allocations.h"
#include "FirmwareImages.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"
#include "UbootQuery.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace uboot
{

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using namespace systemcalls;
using namespace testing;
using namespace testsupport;

const Answer nothingFound{0, "Not found", "Not found"};

std::string error(const std::string& text)
{
    return "bsp.core 1 Bsp_getUbootProductInfo(): " + text;
}

void expectError(const Answer& answer, const std::string& text)
{
    EXPECT_EQ(answer, failed);
    EXPECT_THAT(takeLines(), ElementsAre(error(text)));
}

class UbootFaults : public Test
{
protected:
    ~UbootFaults() override { hooks() = {}; }

    const TemporaryDirectory directory;
};

TEST_F(UbootFaults, RefusesNoRoomBeforeItOpensAnything)
{
    hooks().open = [](const char* path, int, mode_t) {
        ADD_FAILURE() << path << " is opened";
        return -1;
    };
    EXPECT_EQ(askFile("/dev/null", 0, 80), failed);
    EXPECT_EQ(askFile("/dev/null", 80, 0), failed);
    EXPECT_EQ(askFile("/dev/null", 0, 0), failed);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST_F(UbootFaults, ReportsADeviceThatCannotBeOpened)
{
    EXPECT_EQ(askFile("/no/such/device"), failed);
    char buffer[8] = "before";
    EXPECT_EQ(Bsp_getUbootProductInfo(nullptr, buffer, 8, buffer, 8), -1);
    EXPECT_STREQ(buffer, "before");
    EXPECT_THAT(takeLines(),
                ElementsAre(error("Failed to open u-boot device with name /no/such/device. "
                                  "errno = No such file or directory"),
                            error("Failed to open u-boot device with name (null). "
                                  "errno = Bad address")));
}

TEST_F(UbootFaults, ReportsADeviceWithoutASize)
{
    const std::string pipe = directory.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int otherEnd = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(askFile(pipe), failed);
    ::close(otherEnd);
    EXPECT_THAT(takeLines(),
                ElementsAre(error("Failed to get size of " + pipe + ". errno = Illegal seek")));
}

TEST_F(UbootFaults, ReportsADeviceThatCannotBePositioned)
{
    hooks().lseek = [](int fd, off_t offset, int whence) {
        return whence == SEEK_SET ? fail<off_t>(EIO) : real().lseek(fd, offset, whence);
    };
    expectError(ask("x"), "Failed to set file offset. errno = Input/output error");
}

TEST_F(UbootFaults, ReportsADeviceThatCannotBeRead)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t) {
        return ++reads == 1 ? real().read(fd, buffer, 5) : fail<ssize_t>(EIO);
    };
    EXPECT_EQ(ask("Product number: PN-1"), failed);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 7 Bsp_readHelper(): Read 5 bytes",
                                         "bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                                         error("Failed to read file. errno = Input/output error")));
}

TEST_F(UbootFaults, ReadsAFolderWhoseSizeIsNothing)
{
    // One read is made all the same, and fails.
    hooks().lseek = [](int, off_t, int) { return off_t{0}; };
    EXPECT_EQ(askFile("/proc/self/fd"), failed);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                                         error("Failed to read file. errno = Is a directory")));
}

TEST_F(UbootFaults, RefusesAFolder)
{
    for (const std::string& folder : {directory.path().string(), std::string("/"),
                                      std::string("/proc/self/fd"), std::string("/dev")})
    {
        EXPECT_EQ(askFile(folder), failed);
        EXPECT_EQ(takeLines(1).size(), 1U) << folder;
    }
}

TEST_F(UbootFaults, ReportsAnImageThatFitsIntoNoMemory)
{
    struct Case
    {
        off_t size;
        std::string bytes;
    };
    for (const auto& [size, bytes] : {
             Case{INT64_MAX, "9223372036854775808"},
             Case{INT64_MAX - 1, "9223372036854775807"},
             Case{off_t{1} << 50U, "1125899906842625"},
         })
    {
        hooks().lseek = [end = size](int, off_t, int whence) {
            return whence == SEEK_END ? end : off_t{0};
        };
        EXPECT_EQ(askFile("/dev/null"), failed);
        EXPECT_THAT(takeLines(), ElementsAre(error("Failed to allocate " + bytes + " bytes")));
    }
}

TEST_F(UbootFaults, ReportsASparseImageLargerThanMemory)
{
    writeFile(directory.file("u-boot"), "Product number: PN-1");
    std::filesystem::resize_file(directory.file("u-boot"), std::uintmax_t{1} << 42U);
    expectError(askFile(directory.file("u-boot")), "Failed to allocate 4398046511105 bytes");
}

TEST_F(UbootFaults, ReportsAnImageLargerThanAllMemoryThatTheMachineHas)
{
    // The kernel would promise that much, and kill this process when it is used.
    hooks().sysinfo = [](struct sysinfo* machine) {
        *machine = {};
        machine->totalram = 3;
        machine->totalswap = 2;
        machine->mem_unit = 100;
        return 0;
    };
    EXPECT_EQ(ask(noise(499)), nothingFound);
    EXPECT_EQ(ask(noise(500)), failed);
    EXPECT_THAT(takeLines(1), ElementsAre(error("Failed to allocate 501 bytes")));
    hooks().sysinfo = [](struct sysinfo*) { return fail(EFAULT); };
    EXPECT_EQ(ask(noise(500)), nothingFound);
}

TEST_F(UbootFaults, ReportsALackOfMemory)
{
    writeFile(directory.file("u-boot"), noise(500));
    const std::string name = directory.file("u-boot");
    char buffer[8] = "before";
    observeAllocations([](std::size_t size) {
        if (size == 501) {
            throw std::bad_alloc();
        }
    });
    const int result = Bsp_getUbootProductInfo(name.c_str(), buffer, 8, buffer, 8);
    observeAllocations(nullptr);
    EXPECT_EQ(result, -1);
    EXPECT_STREQ(buffer, "before");
    EXPECT_THAT(takeLines(), ElementsAre(error("Failed to allocate 501 bytes")));
}

TEST_F(UbootFaults, KeepsTheDeviceFromProgramsThatAreStarted)
{
    std::vector<int> opened;
    hooks().open = [&](const char* path, int flags, mode_t mode) {
        opened.push_back(flags);
        return real().open(path, flags, mode);
    };
    EXPECT_EQ(askFile("/dev/null"), (Answer{0, "Not found", "Not found"}));
    EXPECT_THAT(opened, ElementsAre(O_RDONLY | O_CLOEXEC));
}

TEST_F(UbootFaults, SearchesNoMoreThanWasRead)
{
    const std::string name = directory.file("u-boot");
    writeFile(name, "Product number: PN-1 is cut here, R-state: R1");
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        // What is in the room from earlier must not be taken for a part of the image.
        if (size > 40) {
            std::memcpy(buffer, "Product number: PN-1, stale: R-state: R9, which is not there",
                        size);
        }
        std::filesystem::resize_file(name, 20);
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askFile(name), (Answer{0, "PN-1", "Not found"}));
}

TEST_F(UbootFaults, SearchesAGrowingImageAsFarAsItReachedAtFirst)
{
    const std::string name = directory.file("u-boot");
    writeFile(name, "Product number: PN");
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        writeFile(name, "Product number: PN-0001\nR-state: R1\n");
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askFile(name), (Answer{0, "PN", "Not found"}));
}

TEST_F(UbootFaults, ContinuesInterruptedAndShortReads)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        if (++reads % 3 == 0) {
            return fail<ssize_t>(EINTR);
        }
        return real().read(fd, buffer, std::min<std::size_t>(size, 7));
    };
    EXPECT_EQ(ask("Product number: PN-0001\nR-state: R2B\n"), (Answer{0, "PN-0001", "R2B"}));
    EXPECT_GT(reads, 6);
}

TEST_F(UbootFaults, LeaksNothingHoweverOftenItFails)
{
    recordingtrace::setLevel("bsp.core", 0);
    const auto before = openDescriptors();
    for (int round = 0; round < 1000; ++round) {
        hooks() = {};
        ASSERT_EQ(askFile("/no/such/device"), failed);
        ASSERT_EQ(askFile("/proc/self/fd"), failed);
        hooks().lseek = [](int, off_t, int) { return fail<off_t>(EIO); };
        ASSERT_EQ(askFile("/dev/null"), failed);
        hooks().lseek = [](int, off_t, int whence) {
            return whence == SEEK_END ? off_t{INT64_MAX} : off_t{0};
        };
        ASSERT_EQ(askFile("/dev/null"), failed);
        hooks().lseek = [](int, off_t, int whence) {
            return whence == SEEK_END ? off_t{5000} : fail<off_t>(EIO);
        };
        ASSERT_EQ(askFile("/dev/null"), failed);
        hooks().lseek = [](int, off_t, int) { return off_t{5000}; };
        hooks().read = [](int, void*, std::size_t) { return fail<ssize_t>(EIO); };
        ASSERT_EQ(askFile("/dev/null"), failed);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace

} // namespace uboot
