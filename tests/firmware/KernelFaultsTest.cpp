// The image cannot be read or positioned, the inflated kernel not be searched.

#include "KernelFaults.h"
#include "Allocations.h"

#include <cstdint>
#include <cstring>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using namespace systemcalls;
using testing::ElementsAre;

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

TEST_F(KernelFaults, WithoutMemoryForItsBeginningNothingIsRead)
{
    hooks().read = [](int, void*, std::size_t) {
        ADD_FAILURE();
        return ssize_t{0};
    };
    testsupport::observeAllocations([](std::size_t size) {
        if (size == 65536) {
            throw std::bad_alloc();
        }
    });
    const Answer answer = askAgain();
    testsupport::observeAllocations(nullptr);
    EXPECT_EQ(answer, failed());
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
    expectAnswer(failed(), {headerAt1000, "bsp.core 1 Bsp_inflateArchive(): Read failed with "
                                          "errno = Input/output error"});
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
    expectAnswer(failed(), {headerAt1000, endOfFile});
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

TEST_F(KernelFaults, AFailingSeekIsSurvived)
{
    hooks().fseek = [](std::FILE* file, long offset, int whence) {
        EXPECT_EQ(offset, 0);
        EXPECT_EQ(whence, SEEK_SET);
        EXPECT_EQ(real().fseek(file, offset, whence), 0);
        return fail(EFBIG);
    };
    expectAnswer(found("R1A01"),
                 {headerAt1000, inflated,
                  "bsp.core 1 Bsp_findLinuxVersion(): fseek failed with errno = File too large"});
}

TEST_F(KernelFaults, WithoutASizeThereIsNothingToSearch)
{
    hooks().fstat = [](int fd, struct stat* file) {
        const int result = real().fstat(fd, file);
        const bool isInflated = S_ISREG(file->st_mode) && file->st_size > 100000;
        return isInflated ? fail(EIO) : result;
    };
    expectAnswer(failed(), {headerAt1000, inflated,
                            "bsp.core 1 Bsp_findLinuxVersion(): fstat failed with errno = "
                            "Input/output error",
                            noMapping, noVersion});
}

TEST_F(KernelFaults, WithoutAMappingThereIsNothingToSearch)
{
    hooks().mmap = [](void*, std::size_t size, int protection, int flags, int, off_t offset) {
        EXPECT_EQ(size, kernel.size() + 100000);
        EXPECT_EQ(protection, PROT_READ);
        EXPECT_EQ(flags, MAP_PRIVATE);
        EXPECT_EQ(offset, 0);
        errno = ENOMEM;
        return MAP_FAILED;
    };
    expectAnswer(failed(), {headerAt1000, inflated, noMapping, noVersion});
}

TEST_F(KernelFaults, TheLargestSizeThatThereCanBeIsMappedToo)
{
    hooks().fstat = [](int fd, struct stat* file) {
        const int result = real().fstat(fd, file);
        file->st_size = PTRDIFF_MAX;
        return result;
    };
    std::size_t mapped = 0;
    hooks().mmap = [&](void*, std::size_t size, int, int, int, off_t) {
        mapped = size;
        errno = ENOMEM;
        return MAP_FAILED;
    };
    expectAnswer(failed(), {headerAt1000, inflated, noMapping, noVersion});
    EXPECT_EQ(mapped, static_cast<std::size_t>(PTRDIFF_MAX));
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
            EXPECT_EQ(answer, found(Untouched)) << end;
        } else {
            EXPECT_EQ(answer, found(end.substr(toRState))) << end;
        }
    }
    for (const char* end : {"Linux version   ", "Linux version +", "Linux version -1.",
                            "Linux version 1.2.99999999999999999999"})
    {
        EXPECT_EQ(ask(gzip(noise(page - std::strlen(end)) + end)), found(Untouched));
    }
}

} // namespace
