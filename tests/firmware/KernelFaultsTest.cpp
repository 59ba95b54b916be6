// Every function that the kernel's R-state is found with fails once, in each way that it can.

#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "RecordingTrace.h"
#include "SystemCalls.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <future>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using firmware::ask;
using firmware::askFile;
using firmware::failed;
using firmware::found;
using firmware::gzip;
using firmware::kernelImage;
using firmware::noise;
using firmware::TemporaryImage;
using firmware::temporaryImageExists;
using recordingtrace::takeLines;
using systemcalls::fail;
using systemcalls::hooks;
using systemcalls::real;
using testing::ElementsAre;
using testsupport::TemporaryDirectory;
using testsupport::writeFile;

constexpr HvxTraceLevel Course = 5;

const std::string kernel = "Linux version 2.6.34.R1A01 (builder)";
const std::string headerAt1000 = "bsp.core 5 Bsp_findArchive(): ZLIB header found at pos 1000";
const std::string inflated = "bsp.core 5 Bsp_getKernelRState(): Bsp_inflateArchive() successful";
const std::string noTemporaryFile =
    "bsp.core 1 Bsp_getKernelRState(): Could not open tmp file: /dev/shm/zImage_tmp";

/** Sees to it that nothing is left over, whatever failed. */
class KernelFaults : public testing::Test
{
protected:
    KernelFaults()
    {
        writeFile(m_image, kernelImage(kernel + noise(100000)));
        m_descriptors = firmware::openDescriptors();
        hooks().startInflating = [this](z_stream* stream, int windowBits, const char* version,
                                        int size) {
            ++m_openStreams;
            return real().startInflating(stream, windowBits, version, size);
        };
        hooks().inflateEnd = [this](z_stream* stream) {
            --m_openStreams;
            return real().inflateEnd(stream);
        };
    }
    ~KernelFaults() override
    {
        hooks() = {};
        EXPECT_EQ(firmware::openDescriptors(), m_descriptors);
        EXPECT_EQ(m_openStreams, 0);
        EXPECT_FALSE(temporaryImageExists());
        EXPECT_FALSE(firmware::temporaryImageIsMapped());
    }

    firmware::Answer askAgain() const { return askFile(m_image); }

    const TemporaryDirectory m_directory;
    const std::string m_image = m_directory.file("zImage");
    std::ptrdiff_t m_descriptors = 0;
    int m_openStreams = 0;
};

TEST_F(KernelFaults, InterruptedAndShortReadsAreContinuedWhereTheyWere)
{
    struct Read
    {
        std::ptrdiff_t position;
        std::size_t size;
    };
    std::vector<Read> reads;
    char* begin = nullptr;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        char* position = static_cast<char*>(buffer);
        begin = reads.empty() ? position : begin;
        reads.push_back({position - begin, size});
        switch (reads.size()) {
        case 1:
        case 3:
            return fail<ssize_t>(EINTR);
        case 2:
            return real().read(fd, buffer, 100);
        case 4:
            return real().read(fd, buffer, 1);
        default:
            hooks().read = nullptr;
            return real().read(fd, buffer, size);
        }
    };
    EXPECT_EQ(ask(std::string(65533, 'c') + gzip(kernel)), found("R1A01"));
    ASSERT_EQ(reads.size(), 5U);
    const std::ptrdiff_t positions[] = {0, 0, 100, 100, 101};
    for (std::size_t i = 0; i < reads.size(); ++i) {
        EXPECT_EQ(reads[i].position, positions[i]);
        EXPECT_EQ(reads[i].size, 65536U - static_cast<std::size_t>(positions[i]));
    }
    const auto lines = takeLines();
    EXPECT_THAT(std::vector<std::string>(lines.begin() + 2, lines.begin() + 10),
                ElementsAre("bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                            "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying...",
                            "bsp.core 7 Bsp_readHelper(): Read 100 bytes",
                            "bsp.core 7 Bsp_readHelper(): Read -1 bytes",
                            "bsp.core 4 Bsp_readHelper(): read was interrupted. Retrying...",
                            "bsp.core 7 Bsp_readHelper(): Read 1 bytes",
                            "bsp.core 7 Bsp_readHelper(): Read 65435 bytes",
                            "bsp.core 5 Bsp_findArchive(): ZLIB header found at pos 65533"));
}

TEST_F(KernelFaults, AnErrorAfterSomeBytesIsAnErrorOfTheFirstRead)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t) {
        return ++reads == 1 ? real().read(fd, buffer, 5000) : fail<ssize_t>(EIO);
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(reads, 2);
    EXPECT_THAT(takeLines(Course),
                ElementsAre("bsp.core 1 Bsp_findArchive(): File error before archive found. "
                            "read() returned -1"));
}

TEST_F(KernelFaults, AnErrorWhileInflatingIsReportedByItsText)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        return ++reads <= 2 ? real().read(fd, buffer, size) : fail<ssize_t>(EIO);
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 1 Bsp_inflateArchive(): Read failed with "
                                          "errno = Input/output error"));
}

TEST_F(KernelFaults, AnImageThatShrinksEndsTooEarly)
{
    int reads = 0;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        if (++reads == 3) {
            std::filesystem::resize_file(m_image, 2000);
        }
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 4 Bsp_inflateArchive(): End-of-file reached"));
}

TEST_F(KernelFaults, AnImageThatGrowsIsReadToTheEndOfItsArchive)
{
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        std::filesystem::resize_file(m_image, std::filesystem::file_size(m_image) + 100000);
        return real().read(fd, buffer, size);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
}

TEST_F(KernelFaults, TheImageIsPositionedTwice)
{
    std::vector<off_t> offsets;
    hooks().lseek = [&](int, off_t offset, int whence) {
        EXPECT_EQ(whence, SEEK_SET);
        offsets.push_back(offset);
        return offset == 0 ? off_t{0} : fail<off_t>(EIO);
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(offsets, ElementsAre(0, 1000));
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 1 Bsp_getKernelRState(): lseek(zImage, 1000, "
                                          "SEEK_SET) failed for " +
                                              m_image));
}

TEST_F(KernelFaults, TheTemporaryFileIsNotOpenedThroughALink)
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

TEST_F(KernelFaults, ATemporaryFileThatCannotBeLockedIsNotUsed)
{
    hooks().flock = [](int, int) { return fail(ENOLCK); };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, noTemporaryFile));
    // It is not this call's to remove.
    EXPECT_TRUE(std::filesystem::remove(TemporaryImage));
}

TEST_F(KernelFaults, WaitingForTheTemporaryFileMayBeInterrupted)
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

TEST_F(KernelFaults, ATemporaryFileRemovedWhileWaitingIsMadeAnew)
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

TEST_F(KernelFaults, ATemporaryFileReplacedWhileWaitingIsLeftToItsOwner)
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

TEST_F(KernelFaults, TheTemporaryFileIsRemovedBeforeTheLockIsGivenUp)
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

TEST_F(KernelFaults, ATemporaryFileWithoutAStreamIsRemoved)
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

TEST_F(KernelFaults, ZlibIsAskedForGzipByTheInterfaceOfItsVersion)
{
    int calls = 0;
    hooks().startInflating = [&](z_stream* stream, int windowBits, const char* version, int size) {
        const z_stream zero{};
        EXPECT_EQ(std::memcmp(stream, &zero, sizeof zero), 0);
        EXPECT_EQ(windowBits, 47);
        EXPECT_STREQ(version, "1.2.7");
        EXPECT_EQ(size, static_cast<int>(sizeof(z_stream)));
        ++calls;
        ++m_openStreams;
        return real().startInflating(stream, windowBits, version, size);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_EQ(calls, 1);
}

TEST_F(KernelFaults, NothingIsReadWithoutAZlibStream)
{
    hooks().startInflating = [](z_stream*, int, const char*, int) { return Z_MEM_ERROR; };
    EXPECT_EQ(askAgain(), failed());
    const auto lines = takeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.back(), testing::StartsWith("bsp.core 6 ENTER Bsp_inflateArchive(fd="));
}

TEST_F(KernelFaults, ZlibWorksOnChunksOf16KiB)
{
    std::vector<std::size_t> sizes;
    hooks().read = [&](int fd, void* buffer, std::size_t size) {
        sizes.push_back(size);
        return real().read(fd, buffer, size);
    };
    hooks().inflate = [&](z_stream* stream, int flush) {
        EXPECT_EQ(stream->avail_out, 16384U);
        EXPECT_EQ(flush, Z_NO_FLUSH);
        return real().inflate(stream, flush);
    };
    EXPECT_EQ(ask(gzip(kernel + noise(300000), 0)), found("R1A01"));
    ASSERT_GT(sizes.size(), 2U);
    EXPECT_EQ(sizes[0], 65536U);
    EXPECT_EQ(*std::max_element(sizes.begin() + 1, sizes.end()), 16384U);
}

TEST_F(KernelFaults, ThreeResultsOfZlibAreFailuresAfterAnyNumberOfChunks)
{
    for (const int code : {Z_NEED_DICT, Z_DATA_ERROR, Z_MEM_ERROR}) {
        for (const int chunks : {0, 1, 4}) {
            int calls = 0;
            hooks().inflate = [&](z_stream* stream, int flush) {
                return calls++ == chunks ? code : real().inflate(stream, flush);
            };
            EXPECT_EQ(askAgain(), failed());
            EXPECT_EQ(calls, chunks + 1);
            EXPECT_THAT(
                takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 1 Bsp_inflateArchive(): inflate() failed with "
                                          "error " +
                                              std::to_string(code)));
            EXPECT_EQ(m_openStreams, 0);
            EXPECT_FALSE(temporaryImageExists());
        }
    }
}

TEST_F(KernelFaults, OtherResultsOfZlibAreNoFailures)
{
    for (const int code : {Z_BUF_ERROR, Z_STREAM_ERROR, Z_ERRNO, Z_VERSION_ERROR}) {
        int calls = 0;
        hooks().inflate = [&](z_stream* stream, int flush) {
            const int result = real().inflate(stream, flush);
            return calls++ == 1 ? code : result;
        };
        EXPECT_EQ(askAgain(), found("R1A01"));
        EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, inflated));
    }
}

TEST_F(KernelFaults, AShortWriteIsAFailure)
{
    int calls = 0;
    hooks().fwrite = [&](const void* data, std::size_t size, std::size_t count, std::FILE* file) {
        const std::size_t written = real().fwrite(data, size, count, file);
        return ++calls == 3 ? written - 1 : written;
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_EQ(calls, 3);
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 1 Bsp_inflateArchive(): fwrite() failed"));
}

TEST_F(KernelFaults, AStreamErrorIsAFailure)
{
    hooks().ferror = [](std::FILE*) { return 1; };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, "bsp.core 1 Bsp_inflateArchive(): fwrite() failed"));
}

TEST_F(KernelFaults, AFailingSeekIsSurvived)
{
    hooks().fseek = [](std::FILE* file, long offset, int whence) {
        EXPECT_EQ(real().fseek(file, offset, whence), 0);
        return fail(EFBIG);
    };
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_THAT(
        takeLines(Course),
        ElementsAre(headerAt1000, inflated,
                    "bsp.core 1 Bsp_findLinuxVersion(): fseek failed with errno = File too large"));
}

TEST_F(KernelFaults, WithoutASizeThereIsNothingToSearch)
{
    hooks().fstat = [](int fd, struct stat* file) {
        const int result = real().fstat(fd, file);
        const bool isInflated = S_ISREG(file->st_mode) && file->st_size > 100000;
        return isInflated ? fail(EIO) : result;
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, inflated,
                            "bsp.core 1 Bsp_findLinuxVersion(): fstat failed with errno = "
                            "Input/output error",
                            "bsp.core 1 Bsp_findLinuxVersion(): unable to mmap temp image",
                            "bsp.core 1 Bsp_findLinuxVersion(): No Linux version found"));
}

TEST_F(KernelFaults, WithoutAMappingThereIsNothingToSearch)
{
    hooks().mmap = [this](void*, std::size_t size, int protection, int flags, int, off_t offset) {
        EXPECT_EQ(size, kernel.size() + 100000);
        EXPECT_EQ(protection, PROT_READ);
        EXPECT_EQ(flags, MAP_PRIVATE);
        EXPECT_EQ(offset, 0);
        errno = ENOMEM;
        return MAP_FAILED;
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_THAT(takeLines(Course),
                ElementsAre(headerAt1000, inflated,
                            "bsp.core 1 Bsp_findLinuxVersion(): unable to mmap temp image",
                            "bsp.core 1 Bsp_findLinuxVersion(): No Linux version found"));
}

TEST_F(KernelFaults, NothingBehindTheMappingIsRead)
{
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    // Puts a page behind the mapping whose reading is deadly.
    hooks().mmap = [&](void*, std::size_t size, int protection, int flags, int fd, off_t offset) {
        EXPECT_EQ(size % page, 0U);
        char* room = static_cast<char*>(
            real().mmap(nullptr, size + page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        return real().mmap(room, size, protection, flags | MAP_FIXED, fd, offset);
    };
    const std::string whole = "Linux version 2.6.34.R1A01";
    const std::size_t toRState = std::strlen("Linux version 2.6.34.");
    for (std::size_t length = 1; length <= whole.size(); ++length) {
        const std::string end = whole.substr(0, length);
        const auto answer = ask(gzip(noise(2 * page - length) + end));
        if (length < std::strlen("Linux version")) {
            EXPECT_EQ(answer, failed()) << end;
            EXPECT_EQ(takeLines(1).size(), 1U);
        } else if (length <= toRState) {
            EXPECT_EQ(answer, found(firmware::Untouched)) << end;
        } else {
            EXPECT_EQ(answer, found(end.substr(toRState))) << end;
        }
    }
    for (const char* end : {"Linux version   ", "Linux version +", "Linux version -1.",
                            "Linux version 1.2.99999999999999999999"})
    {
        EXPECT_EQ(ask(gzip(noise(page - std::strlen(end)) + end)), found(firmware::Untouched));
    }
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

TEST_F(KernelFaults, AKilledCallerLeavesNothingThatHarms)
{
    writeFile(m_directory.file("other"), kernelImage(noise(200000) + "Linux version 9.9.9.R9Z"));
    {
        const StuckCaller caller(m_directory.file("other"));
    }
    EXPECT_TRUE(temporaryImageExists());
    EXPECT_EQ(askAgain(), found("R1A01"));
    EXPECT_FALSE(temporaryImageExists());
}

TEST_F(KernelFaults, AWaitingCallerGoesOnWhenTheOtherIsKilled)
{
    writeFile(m_directory.file("other"), kernelImage(noise(200000) + "Linux version 9.9.9.R9Z"));
    StuckCaller caller(m_directory.file("other"));
    auto answer = std::async(std::launch::async, [this] { return askAgain(); });
    EXPECT_EQ(answer.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    caller.kill();
    EXPECT_EQ(answer.get(), found("R1A01"));
}

} // namespace
