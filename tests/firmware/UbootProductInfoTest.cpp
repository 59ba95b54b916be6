#include "Bsp.h"
#include "Files.h"
#include "FirmwareImages.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"
#include "TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using firmware::noise;
using recordingtrace::takeLines;
using systemcalls::fail;
using systemcalls::hooks;
using systemcalls::real;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::TemporaryDirectory;
using testsupport::writeFile;

const std::string nul(1, '\0');
const std::string parsing = "bsp.core 6 Bsp_getUbootProductInfo(): Start parsing for u-boot "
                            "strings:";

struct Answer
{
    int result;
    std::string productNumber;
    std::string rstate;
};

bool operator==(const Answer& left, const Answer& right)
{
    return left.result == right.result && left.productNumber == right.productNumber &&
           left.rstate == right.rstate;
}

std::ostream& operator<<(std::ostream& stream, const Answer& answer)
{
    return stream << answer.result << " \"" << answer.productNumber << "\" \"" << answer.rstate
                  << '"';
}

const Answer failed{-1, "before", "before"};

Answer askFile(const std::string& path, unsigned int numberSize = 80, unsigned int rstateSize = 80)
{
    char productNumber[80] = "before";
    char rstate[80] = "before";
    const int result =
        Bsp_getUbootProductInfo(path.c_str(), productNumber, numberSize, rstate, rstateSize);
    return {result, productNumber, rstate};
}

Answer ask(const std::string& image, unsigned int numberSize = 80, unsigned int rstateSize = 80)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("u-boot"), image);
    return askFile(directory.file("u-boot"), numberSize, rstateSize);
}

std::string error(const std::string& text)
{
    return "bsp.core 1 Bsp_getUbootProductInfo(): " + text;
}

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

TEST(UbootProductInfo, TracesAllStepsOnARealBootLoader)
{
    EXPECT_EQ(askFile(std::string(BSP_TEST_DATA_DIR) + "/u-boot-R2B.bin"),
              (Answer{0, "PN-4402/17", "R2B"}));
    EXPECT_THAT(
        takeLines(),
        ElementsAre(
            "bsp.core 7 Bsp_readHelper(): Read 789972 bytes", parsing,
            "bsp.core 6 Bsp_getUbootProductInfo(): \"Product number: \" found at offset 539561",
            "bsp.core 5 Bsp_getUbootProductInfo(): Product number = PN-4402/17",
            "bsp.core 6 Bsp_getUbootProductInfo(): \"R-state: \" found at offset 539588",
            "bsp.core 5 Bsp_getUbootProductInfo(): R-state = R2B"));
}

TEST(UbootProductInfo, IsWhatStandsBehindTheLabels)
{
    struct Case
    {
        std::string image;
        std::string productNumber;
        std::string rstate;
    };
    const std::vector<Case> cases{
        {"Product number: PN-0001\nR-state: R2B\n", "PN-0001", "R2B"},
        {"R-state: R2B\nProduct number: PN-0001\n", "PN-0001", "R2B"},
        {noise(100000) + "R-state: R2B\n" + noise(9000) + "Product number: PN-0001\n", "PN-0001",
         "R2B"},
        // The end of the image, a NUL and a newline each end a value.
        {"Product number: PN-0001" + nul + "xR-state: R2B", "PN-0001", "R2B"},
        {"Product number: \nR-state: ", "", ""},
        {"Product number: " + nul + "R-state: \n", "", ""},
        // Everything else is part of it.
        {"Product number:   PN 1 \r\nR-state: \tR2B\r\n", "  PN 1 \r", "\tR2B\r"},
        {"Product number: \xC4\xFF\x01\nR-state: R-state: R1\n", "\xC4\xFF\x01", "R-state: R1"},
        {"Product number: R-state: R1", "R-state: R1", "R1"},
        // Labels that are none.
        {"Product number:PN-0001\nR-state:R2B\n", "Not found", "Not found"},
        {"product number: PN-0001\nr-state: R2B\n", "Not found", "Not found"},
        {"Product number" + nul + ": PN-0001\nR-state", "Not found", "Not found"},
        {"Product number: PN-0001\n", "PN-0001", "Not found"},
        {"R-state: R2B\n", "Not found", "R2B"},
        {noise(70000), "Not found", "Not found"},
        {"", "Not found", "Not found"},
        // The first of several.
        {"R-state: R1\nProduct number: A\nR-state: R2\nProduct number: B\n", "A", "R1"},
        // A label may follow its own beginning.
        {"ProdProduct number: PN-1\nR-R-state: R1\n", "PN-1", "R1"},
        {"Product numberProduct number: PN-1\nR-stateR-state: R1\n", "PN-1", "R1"},
        {"PPProduct number: PN-1\nRRR-state: R1\n", "PN-1", "R1"},
        {nul + nul + "Product number: PN-1" + nul + nul + "R-state: R1" + nul, "PN-1", "R1"},
    };
    for (const auto& [image, productNumber, rstate] : cases) {
        EXPECT_EQ(ask(image), (Answer{0, productNumber, rstate})) << image.substr(0, 100);
        EXPECT_THAT(takeLines(1), IsEmpty());
    }
}

TEST(UbootProductInfo, TracesAMissingLabelByItsValueAlone)
{
    EXPECT_EQ(ask("x"), (Answer{0, "Not found", "Not found"}));
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.core 7 Bsp_readHelper(): Read 1 bytes", parsing,
                            "bsp.core 5 Bsp_getUbootProductInfo(): Product number = Not found",
                            "bsp.core 5 Bsp_getUbootProductInfo(): R-state = Not found"));
}

TEST(UbootProductInfo, IsCutToItsRoom)
{
    const std::string image = "Product number: PN-0001\nR-state: R2B05\n";
    EXPECT_EQ(ask(image, 8, 6), (Answer{0, "PN-0001", "R2B05"}));
    EXPECT_EQ(ask(image, 7, 5), (Answer{0, "PN-000", "R2B0"}));
    EXPECT_EQ(ask(image, 1, 2), (Answer{0, "", "R"}));
    EXPECT_EQ(ask("", 10, 4), (Answer{0, "Not found", "Not"}));
    EXPECT_EQ(ask("", 9, 1), (Answer{0, "Not foun", ""}));
    const std::string longValue(200, 'v');
    EXPECT_EQ(ask("Product number: " + longValue + "\nR-state: " + longValue),
              (Answer{0, longValue.substr(0, 79), longValue.substr(0, 79)}));
}

TEST(UbootProductInfo, IsPaddedWithNulsAndStaysWithinItsRoom)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("u-boot"), "Product number: PN\nmore than there is room for");
    char productNumber[13];
    char rstate[13];
    std::memset(productNumber, '#', sizeof productNumber);
    std::memset(rstate, '#', sizeof rstate);
    EXPECT_EQ(
        Bsp_getUbootProductInfo(directory.file("u-boot").c_str(), productNumber, 12, rstate, 12),
        0);
    EXPECT_EQ(std::string(productNumber, 3), "PN" + nul);
    EXPECT_EQ(productNumber[11], '\0');
    EXPECT_EQ(productNumber[12], '#');
    EXPECT_EQ(std::string(rstate, 13), "Not found" + nul + nul + nul + '#');
}

TEST(UbootProductInfo, RefusesNoRoomBeforeItOpensAnything)
{
    hooks().open = [](const char* path, int, mode_t) {
        ADD_FAILURE() << path << " is opened";
        return -1;
    };
    EXPECT_EQ(askFile("/dev/null", 0, 80), failed);
    EXPECT_EQ(askFile("/dev/null", 80, 0), failed);
    EXPECT_EQ(askFile("/dev/null", 0, 0), failed);
    hooks() = {};
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(UbootProductInfo, ReportsADeviceThatCannotBeOpened)
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

TEST(UbootProductInfo, ReportsADeviceWithoutASize)
{
    const TemporaryDirectory directory;
    const std::string pipe = directory.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int otherEnd = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(askFile(pipe), failed);
    ::close(otherEnd);
    EXPECT_THAT(takeLines(),
                ElementsAre(error("Failed to get size of " + pipe + ". errno = Illegal seek")));
}

TEST(UbootProductInfo, ReportsADeviceThatCannotBePositioned)
{
    hooks().lseek = [](int fd, off_t offset, int whence) {
        return whence == SEEK_SET ? fail<off_t>(EIO) : real().lseek(fd, offset, whence);
    };
    EXPECT_EQ(ask("x"), failed);
    hooks() = {};
    EXPECT_THAT(takeLines(),
                ElementsAre(error("Failed to set file offset. errno = Input/output error")));
}

TEST(UbootProductInfo, ReportsADeviceThatCannotBeRead)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t) {
        return ++reads == 1 ? real().read(fd, buffer, 5) : fail<ssize_t>(EIO);
    };
    EXPECT_EQ(ask("Product number: PN-1"), failed);
    hooks() = {};
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 7 Bsp_readHelper(): Read 5 bytes",
                                         "bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                                         error("Failed to read file. errno = Input/output error")));
}

TEST(UbootProductInfo, ReadsAFolderWhoseSizeIsNothing)
{
    // One read is made all the same, and fails.
    hooks().lseek = [](int, off_t, int) { return off_t{0}; };
    EXPECT_EQ(askFile("/proc/self/fd"), failed);
    hooks() = {};
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                                         error("Failed to read file. errno = Is a directory")));
}

TEST(UbootProductInfo, RefusesAFolder)
{
    const TemporaryDirectory directory;
    for (const std::string& folder : {directory.path().string(), std::string("/"),
                                      std::string("/proc/self/fd"), std::string("/dev")})
    {
        EXPECT_EQ(askFile(folder), failed);
        EXPECT_EQ(takeLines(1).size(), 1U) << folder;
    }
}

TEST(UbootProductInfo, ReportsAnImageThatFitsIntoNoMemory)
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
    hooks() = {};
}

TEST(UbootProductInfo, ReportsASparseImageLargerThanMemory)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("u-boot"), "Product number: PN-1");
    std::filesystem::resize_file(directory.file("u-boot"), std::uintmax_t{1} << 42U);
    EXPECT_EQ(askFile(directory.file("u-boot")), failed);
    EXPECT_THAT(takeLines(), ElementsAre(error("Failed to allocate 4398046511105 bytes")));
}

TEST(UbootProductInfo, ReportsAnImageLargerThanAllMemoryThatTheMachineHas)
{
    // The kernel would promise that much, and kill this process when it is used.
    hooks().sysinfo = [](struct sysinfo* machine) {
        *machine = {};
        machine->totalram = 3;
        machine->totalswap = 2;
        machine->mem_unit = 100;
        return 0;
    };
    EXPECT_EQ(ask(noise(499)), (Answer{0, "Not found", "Not found"}));
    EXPECT_EQ(ask(noise(500)), failed);
    EXPECT_THAT(takeLines(1), ElementsAre(error("Failed to allocate 501 bytes")));
    hooks().sysinfo = [](struct sysinfo*) { return fail(EFAULT); };
    EXPECT_EQ(ask(noise(500)), (Answer{0, "Not found", "Not found"}));
    hooks() = {};
}

bool refusesMemory = false;

TEST(UbootProductInfo, ReportsALackOfMemory)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("u-boot"), noise(500));
    const std::string name = directory.file("u-boot");
    char buffer[8] = "before";
    refusesMemory = true;
    const int result = Bsp_getUbootProductInfo(name.c_str(), buffer, 8, buffer, 8);
    refusesMemory = false;
    EXPECT_EQ(result, -1);
    EXPECT_STREQ(buffer, "before");
    EXPECT_THAT(takeLines(), ElementsAre(error("Failed to allocate 501 bytes")));
}

TEST(UbootProductInfo, SearchesNoMoreThanWasRead)
{
    const TemporaryDirectory directory;
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
    hooks() = {};
}

TEST(UbootProductInfo, SearchesAGrowingImageAsFarAsItReachedAtFirst)
{
    const TemporaryDirectory directory;
    const std::string name = directory.file("u-boot");
    writeFile(name, "Product number: PN");
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        writeFile(name, "Product number: PN-0001\nR-state: R1\n");
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askFile(name), (Answer{0, "PN", "Not found"}));
    hooks() = {};
}

TEST(UbootProductInfo, ContinuesInterruptedAndShortReads)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        if (++reads % 3 == 0) {
            return fail<ssize_t>(EINTR);
        }
        return real().read(fd, buffer, std::min<std::size_t>(size, 7));
    };
    EXPECT_EQ(ask("Product number: PN-0001\nR-state: R2B\n"), (Answer{0, "PN-0001", "R2B"}));
    hooks() = {};
    EXPECT_GT(reads, 6);
}

TEST(UbootProductInfo, LeaksNothingHoweverOftenItFails)
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
    hooks() = {};
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace

// The library's room for an image is the one thing that it allocates this way.
void* operator new[](std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept
{
    return refusesMemory ? nullptr : std::malloc(size);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void* operator new[](std::size_t size)
{
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
