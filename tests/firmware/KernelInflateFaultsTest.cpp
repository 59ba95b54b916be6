// zlib fails, or what it inflates cannot be written.

#include "KernelFaults.h"

#include <algorithm>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using namespace systemcalls;
using testing::ElementsAre;

class KernelInflateFaults : public KernelFaults
{};

TEST_F(KernelInflateFaults, ZlibIsAskedForGzipByTheInterfaceOfItsVersion)
{
    int calls = 0;
    hooks().startInflating = [&](z_stream* stream, int windowBits, const char* version, int size) {
        EXPECT_EQ(stream->zalloc, nullptr);
        EXPECT_EQ(stream->zfree, nullptr);
        EXPECT_EQ(stream->opaque, nullptr);
        EXPECT_EQ(stream->next_in, nullptr);
        EXPECT_EQ(stream->avail_in, 0U);
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

TEST_F(KernelInflateFaults, NothingIsReadWithoutAZlibStream)
{
    hooks().startInflating = [](z_stream*, int, const char*, int) { return Z_MEM_ERROR; };
    EXPECT_EQ(askAgain(), failed());
    const auto lines = takeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines.back(), testing::StartsWith("bsp.core 6 ENTER Bsp_inflateArchive(fd="));
}

TEST_F(KernelInflateFaults, ZlibWorksOnChunksOf16KiB)
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

TEST_F(KernelInflateFaults, ThreeResultsOfZlibAreFailuresAfterAnyNumberOfChunks)
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

TEST_F(KernelInflateFaults, OtherResultsOfZlibAreNoFailures)
{
    for (const int code : {Z_BUF_ERROR, Z_STREAM_ERROR, Z_ERRNO, Z_VERSION_ERROR}) {
        int calls = 0;
        hooks().inflate = [&](z_stream* stream, int flush) {
            const int result = real().inflate(stream, flush);
            return calls++ == 1 ? code : result;
        };
        expectAnswer(found("R1A01"), {headerAt1000, inflated});
    }
}

TEST_F(KernelInflateFaults, AShortWriteIsAFailure)
{
    int calls = 0;
    hooks().fwrite = [&](const void* data, std::size_t size, std::size_t count, std::FILE* file) {
        const std::size_t written = real().fwrite(data, size, count, file);
        return ++calls == 3 ? written - 1 : written;
    };
    EXPECT_EQ(askAgain(), failed());
    EXPECT_EQ(calls, 3);
    EXPECT_THAT(takeLines(Course), ElementsAre(headerAt1000, notWritten));
}

TEST_F(KernelInflateFaults, AStreamErrorIsAFailure)
{
    hooks().ferror = [](std::FILE*) { return 1; };
    expectAnswer(failed(), {headerAt1000, notWritten});
}

} // namespace
