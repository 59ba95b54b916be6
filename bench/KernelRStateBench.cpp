/**
 * @file
 * @brief What it costs to find a kernel's R-state, against inflating the kernel alone.
 *
 * - wholeCall: the whole of Bsp_getKernelRState, and zlib inflating the same stream in memory with
 *   its output thrown away, in turns.
 * - readImage: reading the compressed image chunk by chunk.
 * - writeTemporaryFile: making the temporary file, writing the inflated image to it and removing
 * it.
 * - findBanner: mapping the temporary file and finding the banner in it.
 *
 * The last three are what the whole call does beside inflating. Each on a real kernel, as its own
 * build compressed it (0 MiB), and on made ones, machine code of so many MiB. The banner is about
 * halfway.
 */
#include "Bsp.h"
#include "Comparison.h"
#include "Files.h"
#include "FirmwareImages.h"
#include "firmware/ImageFile.h"
#include "firmware/KernelImage.h"
#include "firmware/TemporaryFile.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <zlib.h>

namespace
{

using os::bsp::TemporaryFile;

constexpr std::size_t ChunkSize = 16384;
constexpr const char* TemporaryName = "/dev/shm/zImage_bench";

/** A kernel image in a file, and what is in it. */
struct Image
{
    std::string path;
    std::string stream;   /**< The gzip stream. */
    std::string inflated; /**< What the stream inflates to. */
    std::string rstate;
};

/** Inflates a stream chunk by chunk; @p take gets each chunk. */
template <typename Take> void inflateAll(const std::string& stream, Take take)
{
    std::array<char, ChunkSize> chunk;
    z_stream inflater{};
    inflateInit2(&inflater, 15 + 32);
    inflater.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.data()));
    inflater.avail_in = static_cast<uInt>(stream.size());
    int result = Z_OK;
    while (result == Z_OK) {
        inflater.next_out = reinterpret_cast<Bytef*>(chunk.data());
        inflater.avail_out = chunk.size();
        result = inflate(&inflater, Z_NO_FLUSH);
        take(chunk.data(), chunk.size() - inflater.avail_out);
    }
    inflateEnd(&inflater);
    if (result != Z_STREAM_END) {
        throw std::runtime_error("the stream does not inflate");
    }
}

void inflateAndThrowAway(const std::string& stream)
{
    inflateAll(stream, [](const char* data, std::size_t) { benchmark::DoNotOptimize(*data); });
}

std::string inflated(const std::string& stream)
{
    std::string all;
    inflateAll(stream, [&all](const char* data, std::size_t size) { all.append(data, size); });
    return all;
}

Image realImage()
{
    const std::string path = std::string(BSP_TEST_DATA_DIR) + "/zImage-2.6.34.R1A01";
    const std::string bytes = testsupport::readFile(path);
    const std::string stream = bytes.substr(bytes.find("\x1F\x8B\x08"));
    return {path, stream, inflated(stream), "R1A01"};
}

/** The real kernel over and over, its banners spoilt, with one banner halfway. */
Image madeImage(const testsupport::TemporaryDirectory& directory, std::size_t size)
{
    std::string kernel = realImage().inflated;
    for (std::size_t i = kernel.find("Linux version"); i != std::string::npos;
         i = kernel.find("Linux version"))
    {
        kernel[i + 1] = 'I';
    }
    std::string contents;
    while (contents.size() < size) {
        contents += kernel;
    }
    contents.resize(size);
    contents.insert(size / 2, "Linux version 3.10.104.R2B05 (");
    const std::string stream = firmware::gzip(contents);
    const std::string path = directory.file("made" + std::to_string(size));
    testsupport::writeFile(path, std::string(18000, '\0') + stream);
    return {path, stream, contents, "R2B05"};
}

/** The real image for 0, else a made one of so many MiB. */
const Image& imageOf(std::int64_t mebibytes)
{
    static const testsupport::TemporaryDirectory directory;
    static std::map<std::int64_t, Image> images;
    auto found = images.find(mebibytes);
    if (found == images.end()) {
        const std::size_t size = static_cast<std::size_t>(mebibytes) << 20U;
        found =
            images.emplace(mebibytes, size == 0 ? realImage() : madeImage(directory, size)).first;
    }
    return found->second;
}

void wholeCall(benchmark::State& state)
{
    const Image& image = imageOf(state.range(0));
    std::array<char, os::bsp::KernelRStateSize> rstate{};
    compareInTurns(
        state, [&] { Bsp_getKernelRState(image.path.c_str(), rstate.data(), rstate.size()); },
        [&] { inflateAndThrowAway(image.stream); }, [&] { return rstate.data() == image.rstate; });
}

void readImage(benchmark::State& state)
{
    const Image& image = imageOf(state.range(0));
    std::array<char, ChunkSize> chunk;
    for (auto _ : state) {
        const syscalls::FileDescriptor fd(::open(image.path.c_str(), O_RDONLY | O_CLOEXEC));
        while (os::bsp::Bsp_readHelper(fd.get(), chunk.data(), chunk.size()) > 0) {
        }
    }
}

void writeChunks(const Image& image, std::FILE* file)
{
    for (std::size_t i = 0; i < image.inflated.size(); i += ChunkSize) {
        std::fwrite(image.inflated.data() + i, 1, std::min(ChunkSize, image.inflated.size() - i),
                    file);
    }
}

void writeTemporaryFile(benchmark::State& state)
{
    const Image& image = imageOf(state.range(0));
    for (auto _ : state) {
        const TemporaryFile file(TemporaryName);
        writeChunks(image, file.stream());
    }
}

void findBanner(benchmark::State& state)
{
    const Image& image = imageOf(state.range(0));
    const TemporaryFile file(TemporaryName);
    writeChunks(image, file.stream());
    std::array<char, os::bsp::KernelRStateSize> rstate{};
    for (auto _ : state) {
        benchmark::DoNotOptimize(os::bsp::Bsp_findLinuxVersion(file.stream(), rstate.data()));
    }
}

constexpr std::int64_t Real = 0;
constexpr std::int64_t Made = 16;

BENCHMARK(wholeCall)
    ->ArgName("MiB")
    ->Arg(Real)
    ->RangeMultiplier(4)
    ->Range(1, 64)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(readImage)->ArgName("MiB")->Arg(Real)->Arg(Made)->Unit(benchmark::kMillisecond);
BENCHMARK(writeTemporaryFile)->ArgName("MiB")->Arg(Real)->Arg(Made)->Unit(benchmark::kMillisecond);
BENCHMARK(findBanner)->ArgName("MiB")->Arg(Real)->Arg(Made)->Unit(benchmark::kMillisecond);

} // namespace
