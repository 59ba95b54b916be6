/**
 * @file
 * @brief Fuzzes kernel images: what is in the gzip stream, what stands around it, and raw bytes.
 */
#include "Bsp.h"
#include "Expect.h"
#include "KeptTrace.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fuzzer/FuzzedDataProvider.h>
#include <zlib.h>

namespace
{

using fuzz::expectEqual;

constexpr const char* Inflated = "/dev/shm/zImage_tmp";
constexpr std::size_t ScannedBytes = 65536;
constexpr std::size_t Chunk = 16384;

std::string compressed(const std::string& bytes, int level)
{
    z_stream stream{};
    fuzz::expect("zlib can compress",
                 ::deflateInit2(&stream, level, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY) == Z_OK);
    std::string result(::deflateBound(&stream, bytes.size()), '\0');
    std::string source = bytes;
    stream.next_in = reinterpret_cast<Bytef*>(source.data());
    stream.avail_in = static_cast<uInt>(source.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    fuzz::expect("zlib compresses", ::deflate(&stream, Z_FINISH) == Z_STREAM_END);
    result.resize(stream.total_out);
    ::deflateEnd(&stream);
    return result;
}

/** A kernel: filler, what the input has, and filler. */
std::string anyKernel(FuzzedDataProvider& input)
{
    std::string kernel(input.ConsumeIntegralInRange<std::size_t>(0, 3 * Chunk),
                       static_cast<char>(input.ConsumeIntegral<char>()));
    kernel += input.ConsumeRandomLengthString(64);
    if (input.ConsumeBool()) {
        kernel += "Linux version";
    }
    kernel += input.ConsumeRandomLengthString(128);
    kernel.append(input.ConsumeIntegralInRange<std::size_t>(0, Chunk), '\0');
    return kernel;
}

std::string anyImage(FuzzedDataProvider& input)
{
    std::string image(input.ConsumeIntegralInRange<std::size_t>(0, 300), '\x1F');
    if (input.ConsumeIntegralInRange<int>(0, 7) == 0) {
        image.append(ScannedBytes - image.size() - input.ConsumeIntegralInRange<std::size_t>(0, 4),
                     '\x8B');
    }
    if (input.ConsumeBool()) {
        image += compressed(anyKernel(input), input.ConsumeIntegralInRange<int>(0, 9));
    }
    // Damage: one byte, or the end.
    const auto damage = input.ConsumeIntegralInRange<int>(0, 7);
    if (damage == 0 && !image.empty()) {
        image[input.ConsumeIntegralInRange<std::size_t>(0, image.size() - 1)] ^=
            static_cast<char>(1U << input.ConsumeIntegralInRange<unsigned int>(0, 7));
    } else if (damage == 1) {
        image.resize(input.ConsumeIntegralInRange<std::size_t>(0, image.size()));
    }
    return image + input.ConsumeRemainingBytesAsString();
}

struct Answer
{
    int result;
    std::string rstate;
    std::vector<std::string> messages; /**< Without those of single reads. */
};

/** The stream from its header on, with as much input as the layer gives at once. */
int inflateAll(const std::string& archive, std::string& kernel, std::vector<std::string>& messages)
{
    z_stream stream{};
    std::string source = archive;
    fuzz::expect("zlib can inflate", ::inflateInit2(&stream, 47) == Z_OK);
    std::string room(1 << 20, '\0');
    int result = Z_OK;
    std::size_t given = 0;
    while (result >= Z_OK || result == Z_BUF_ERROR) {
        if (result == Z_STREAM_END || (stream.avail_in == 0 && given == source.size())) {
            break;
        }
        if (stream.avail_in == 0) {
            stream.next_in = reinterpret_cast<Bytef*>(source.data() + given);
            stream.avail_in = static_cast<uInt>(std::min(Chunk, source.size() - given));
            given += stream.avail_in;
        }
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        result = ::inflate(&stream, Z_NO_FLUSH);
        if (result == Z_NEED_DICT) {
            break;
        }
        kernel.append(room.data(), room.size() - stream.avail_out);
        if (result == Z_BUF_ERROR && stream.avail_in != 0) {
            break;
        }
    }
    ::inflateEnd(&stream);
    if (result == Z_STREAM_END) {
        return 0;
    }
    if (result == Z_NEED_DICT || result == Z_DATA_ERROR || result == Z_MEM_ERROR) {
        messages.push_back("1 Bsp_inflateArchive(): inflate() failed with error " +
                           std::to_string(result));
    } else {
        messages.emplace_back("4 Bsp_inflateArchive(): End-of-file reached");
    }
    return -1;
}

/** The position behind the banner; npos when there is none. */
std::size_t behindBanner(const std::string& kernel)
{
    const std::string banner = "Linux version";
    std::size_t matched = 0;
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        matched = kernel[i] == banner[matched] ? matched + 1 : 0;
        if (matched == banner.size()) {
            return i + 1;
        }
    }
    return std::string::npos;
}

Answer model(const std::string& image, const std::string& path, const std::string& rstate)
{
    Answer answer{-1, rstate, {"6 ENTER Bsp_getKernelRState(" + path + ')'}};
    std::vector<std::string>& messages = answer.messages;
    messages.emplace_back("6 ENTER Bsp_findArchive(fd=)");
    const std::string scanned = image.substr(0, ScannedBytes);
    if (scanned.empty()) {
        messages.emplace_back(
            "1 Bsp_findArchive(): File error before archive found. read() returned 0");
        return answer;
    }
    const std::size_t archive = scanned.find("\x1F\x8B\x08");
    if (archive == std::string::npos) {
        messages.emplace_back("1 Bsp_findArchive(): Couldn't find ZLIB header");
        return answer;
    }
    messages.push_back("5 Bsp_findArchive(): ZLIB header found at pos " + std::to_string(archive));
    messages.emplace_back("6 ENTER Bsp_inflateArchive(fd=)");
    std::string kernel;
    if (inflateAll(image.substr(archive), kernel, messages) != 0) {
        return answer;
    }
    messages.emplace_back("5 Bsp_getKernelRState(): Bsp_inflateArchive() successful");
    messages.emplace_back("6 ENTER Bsp_findLinuxVersion()");
    if (kernel.empty()) {
        messages.emplace_back("1 Bsp_findLinuxVersion(): unable to mmap temp image");
    }
    const std::size_t behind = behindBanner(kernel);
    if (behind == std::string::npos) {
        messages.emplace_back("1 Bsp_findLinuxVersion(): No Linux version found");
        return answer;
    }
    answer.result = 0;
    std::array<int, 3> numbers{};
    std::array<char, 8> found{};
    const std::string version = kernel.substr(std::min(behind + 1, kernel.size()));
    if (std::sscanf(version.c_str(), "%d.%d.%d.%7[a-zA-Z0-9]", &numbers[0], &numbers[1],
                    &numbers[2], found.data()) == 4)
    {
        answer.rstate.replace(0, std::strlen(found.data()) + 1, found.data(),
                              std::strlen(found.data()) + 1);
    }
    return answer;
}

/** The messages without those of single reads, and without the descriptors' numbers. */
std::vector<std::string> comparable(const std::vector<std::string>& messages)
{
    std::vector<std::string> result;
    for (std::string message : messages) {
        const std::size_t fd = message.find("(fd=");
        if (fd != std::string::npos) {
            message.erase(fd + 4, message.size() - fd - 5);
        }
        if (message.rfind("7 Bsp_readHelper(): Read ", 0) == std::string::npos) {
            result.push_back(message);
        }
    }
    return result;
}

int openImage(const std::string& image)
{
    const int fd = ::memfd_create("image", 0);
    fuzz::expect("the image can be written",
                 ::write(fd, image.data(), image.size()) == static_cast<ssize_t>(image.size()));
    return fd;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::string image = anyImage(input);
    const int fd = openImage(image);
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    std::string rstate = "untouched#";
    fuzz::takeMessages();
    const Answer wanted = model(image, path, rstate);
    const int result = Bsp_getKernelRState(path.c_str(), rstate.data(), 8);
    expectEqual("the trace", fuzz::joined(comparable(fuzz::takeMessages())),
                fuzz::joined(wanted.messages));
    expectEqual("the result", result, wanted.result);
    expectEqual("the R-state", rstate, wanted.rstate);
    fuzz::expect("the temporary file is gone", ::access(Inflated, F_OK) == -1);
    const int next = ::dup(fd);
    expectEqual("the lowest free descriptor", next, fd + 1);
    ::close(next);
    ::close(fd);
    return 0;
}
