// Where the gzip stream is looked for in an image, and how it is inflated.

#include "FirmwareImages.h"
#include "KernelQuery.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using testing::ElementsAre;

const std::string header = "\x1F\x8B\x08";

TEST(KernelArchive, IsFoundWhereverItsHeaderLiesWithinTheFirst64KiB)
{
    for (const std::size_t position : {0U, 1U, 2U, 1000U, 16384U, 65531U, 65532U, 65533U}) {
        expectCourse(ask(std::string(position, 'c') + gzip(kernel)), found("R1A01"),
                     {headerAt(position), inflated});
    }
}

TEST(KernelArchive, IsNotFoundWhereItsHeaderReachesBeyondTheFirst64KiB)
{
    for (const std::size_t position : {65534U, 65535U, 65536U, 70000U}) {
        expectCourse(ask(std::string(position, 'c') + gzip(kernel)), failed(), {noHeader});
    }
}

TEST(KernelArchive, IsFoundBehindTheBeginningOfAHeader)
{
    for (const std::string prefix : {"\x1F", "\x1F\x1F", "\x1F\x8B", "\x1F\x8B\x1F\x8B", "\x8B\x08",
                                     "\x1F\x8B\x07", "\x1F\x08"})
    {
        expectCourse(ask(prefix + gzip(kernel)), found("R1A01"),
                     {headerAt(prefix.size()), inflated});
    }
}

TEST(KernelArchive, IsTheFirstThatLooksLikeOne)
{
    expectCourse(ask(header + "\xFF a decoy" + gzip(kernel)), failed(),
                 {headerAt(0), inflateError(-3)});
}

TEST(KernelArchive, IsNotLookedForBehindTheEndOfAShortImage)
{
    for (const std::string image : {"\x1F", "\x1F\x8B", "c\x1F\x8B"}) {
        expectCourse(ask(image), failed(), {noHeader});
    }
}

TEST(KernelArchive, MayHaveItsHeaderAsTheImagesLastBytes)
{
    for (const std::size_t position : {0U, 5U, 65533U}) {
        expectCourse(ask(std::string(position, 'c') + header), failed(),
                     {headerAt(position), endOfFile});
    }
}

TEST(KernelArchive, FailsWhenItIsCutShort)
{
    // The banner is there as soon as the first bytes are inflated.
    const std::string stream = gzip(kernel + noise(100000));
    for (const std::size_t missing : {1U, 4U, 8U, 9U, 20000U, 16384U * 3}) {
        expectCourse(ask(stream.substr(0, stream.size() - missing)), failed(),
                     {headerAt(0), endOfFile});
        EXPECT_FALSE(temporaryImageExists());
    }
}

TEST(KernelArchive, FailsWhenItsChecksumOrLengthIsWrong)
{
    for (const std::size_t fromEnd : {1U, 5U}) {
        std::string stream = gzip(kernel);
        stream[stream.size() - fromEnd] ^= 1;
        expectCourse(ask(stream), failed(), {headerAt(0), inflateError(-3)});
        EXPECT_FALSE(temporaryImageExists());
    }
}

TEST(KernelArchive, FailsWhenItIsDamagedManyChunksOn)
{
    std::string stream = gzip(kernel + noise(1000000), 0);
    // Long enough to hit the header of a block, of which there is one every 64 KiB.
    stream.replace(500000, 100000, 100000, '\xFF');
    expectCourse(ask(stream), failed(), {headerAt(0), inflateError(-3)});
    EXPECT_FALSE(temporaryImageExists());
}

TEST(KernelArchive, MayHaveAnySizeAndCompression)
{
    for (const int level : {0, 1, 9}) {
        for (const std::size_t size :
             {4095U, 4096U, 4097U, 16383U, 16384U, 16385U, 32768U, 65536U, 200000U, 1048576U})
        {
            const std::string contents = noise(size - kernel.size()) + kernel;
            EXPECT_EQ(ask(gzip(contents, level)), found("R1A01")) << level << ' ' << size;
        }
    }
}

TEST(KernelArchive, MayEndWithTheImageAtTheEndOfAChunk)
{
    // Stored data lets the stream have any length.
    for (const std::size_t chunks : {1U, 2U, 3U}) {
        std::string contents = noise(chunks * 16384 - 100);
        std::string stream = gzip(contents + kernel, 0);
        contents.resize(contents.size() + chunks * 16384 - stream.size(), ' ');
        stream = gzip(contents + kernel, 0);
        ASSERT_EQ(stream.size(), chunks * 16384);
        expectCourse(ask(stream), found("R1A01"), {headerAt(0), inflated});
    }
}

TEST(KernelArchive, IsNotReadBeyondItsEnd)
{
    // A second member of the archive is no part of the kernel.
    expectCourse(ask(gzip("nothing") + gzip(kernel)), failed(), {headerAt(0), inflated, noVersion});

    EXPECT_EQ(ask(gzip(kernel) + noise(40000)), found("R1A01"));
    // Header, 64 KiB of the image, one chunk of the stream and what is behind it; no more.
    EXPECT_THAT(takeLines(),
                testing::Contains("bsp.core 7 Bsp_readHelper(): Read 16384 bytes").Times(1));
}

TEST(KernelArchive, MayBeEmptyWhichIsNoKernel)
{
    expectCourse(ask(kernelImage("")), failed(), {headerAt(1000), inflated, noMapping, noVersion});
    EXPECT_FALSE(temporaryImageExists());
}

} // namespace
