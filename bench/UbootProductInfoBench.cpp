/**
 * @file
 * @brief What it costs to find the lines of a boot loader image of so many MiB, which stand at its
 * end, against reading the image into memory of its own.
 */
#include "Bsp.h"
#include "Comparison.h"
#include "FileDescriptor.h"
#include "Files.h"
#include "FirmwareImages.h"
#include "FullRead.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include <fcntl.h>

namespace
{

std::string imageOf(std::size_t size)
{
    const std::string lines = "Product number: PN-0001\nR-state: R2B05\n";
    const std::string part = firmware::noise(std::size_t{1} << 20U);
    std::string image;
    while (image.size() < size) {
        image += part;
    }
    image.replace(image.size() - lines.size(), lines.size(), lines);
    return image;
}

void readAll(const std::string& path, std::size_t size)
{
    const std::unique_ptr<char[]> room(new char[size]);
    const syscalls::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    syscalls::readFully(file.get(), room.get(), size);
    benchmark::DoNotOptimize(room[size - 1]);
}

void wholeCall(benchmark::State& state)
{
    const std::size_t size = static_cast<std::size_t>(state.range(0)) << 20U;
    const testsupport::TemporaryDirectory directory;
    const std::string path = directory.file("image");
    testsupport::writeFile(path, imageOf(size));
    std::array<char, 80> number{};
    std::array<char, 80> rstate{};
    compareInTurns(
        state,
        [&] {
            Bsp_getUbootProductInfo(path.c_str(), number.data(), number.size(), rstate.data(),
                                    rstate.size());
        },
        [&] { readAll(path, size); }, [&] { return rstate.data() == std::string("R2B05"); });
}

BENCHMARK(wholeCall)->ArgName("MiB")->RangeMultiplier(4)->Range(1, 256)->UseManualTime()->Unit(
    benchmark::kMillisecond);

} // namespace
