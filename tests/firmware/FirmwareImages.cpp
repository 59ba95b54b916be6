#include "FirmwareImages.h"

#include <algorithm>
#include <random>
#include <stdexcept>

#include <zlib.h>

namespace firmware
{

std::string gzip(const std::string& data, int level)
{
    constexpr int GzipWindowBits = 15 + 16;
    constexpr int MemoryLevel = 8;
    z_stream stream{};
    if (deflateInit2(&stream, level, Z_DEFLATED, GzipWindowBits, MemoryLevel, Z_DEFAULT_STRATEGY) !=
        Z_OK)
    {
        throw std::runtime_error("deflateInit2");
    }
    std::string result(deflateBound(&stream, static_cast<uLong>(data.size())), '\0');
    std::string input = data;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int status = deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    if (status != Z_STREAM_END) {
        throw std::runtime_error("deflate");
    }
    return result;
}

std::string kernelImage(const std::string& inflated)
{
    return std::string(1000, 'c') + gzip(inflated) + "more code";
}

std::string noise(std::size_t size, unsigned int seed)
{
    std::minstd_rand generator(seed);
    std::string bytes(size, '\0');
    // Nothing from 'A' on, so no letter of a banner and no byte of a header.
    std::generate(bytes.begin(), bytes.end(),
                  [&generator] { return static_cast<char>(' ' + generator() % 32); });
    return bytes;
}

} // namespace firmware
