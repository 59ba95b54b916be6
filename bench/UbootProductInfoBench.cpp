/**
 * @file
 * @brief What it costs to find the lines of a boot loader image of so many MiB, which stand at its
 * end, against reading the image into memory of its own.
 *
 * Both in turns; "ratio" is the one's shortest time by the other's: whatever else the machine does
 * only adds.
 */
#include "Bsp.h"
#include "Files.h"
#include "FirmwareImages.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

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

template <typename Work> double secondsOf(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void readAll(const std::string& path, std::size_t size)
{
    const std::unique_ptr<char[]> room(new char[size]);
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t done = 0;
    for (ssize_t count = 1; count > 0 && done < size; done += static_cast<std::size_t>(count)) {
        count = std::max<ssize_t>(::read(fd, room.get() + done, size - done), 0);
    }
    ::close(fd);
    benchmark::DoNotOptimize(room[done - 1]);
}

void wholeCall(benchmark::State& state)
{
    const std::size_t size = static_cast<std::size_t>(state.range(0)) << 20U;
    const testsupport::TemporaryDirectory directory;
    const std::string path = directory.file("image");
    testsupport::writeFile(path, imageOf(size));
    double reading = std::numeric_limits<double>::max();
    double call = reading;
    std::array<char, 80> number{};
    std::array<char, 80> rstate{};
    while (state.KeepRunning()) {
        reading = std::min(reading, secondsOf([&] { readAll(path, size); }));
        const double time = secondsOf([&] {
            Bsp_getUbootProductInfo(path.c_str(), number.data(), number.size(), rstate.data(),
                                    rstate.size());
        });
        call = std::min(call, time);
        if (rstate.data() != std::string("R2B05")) {
            state.SkipWithError("wrong answer");
            break;
        }
        state.SetIterationTime(time);
    }
    state.counters["limit_ms"] = reading * 1e3;
    state.counters["call_ms"] = call * 1e3;
    state.counters["ratio"] = call / reading;
}

BENCHMARK(wholeCall)->ArgName("MiB")->RangeMultiplier(4)->Range(1, 256)->UseManualTime()->Unit(
    benchmark::kMillisecond);

} // namespace
