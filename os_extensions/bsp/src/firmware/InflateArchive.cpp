#include "BspTrace.h"
#include "ErrnoText.h"
#include "HvxMessage.h"
#include "firmware/ImageFile.h"
#include "firmware/KernelImage.h"

#include <array>
#include <cerrno>

#include <zlib.h>

namespace os::bsp
{

namespace
{

constexpr std::size_t ChunkSize = 16384;

/** Begins with a cache line: the system copies it faster then. */
struct alignas(64) Chunk
{
    std::array<unsigned char, ChunkSize> bytes;
};

/** A zlib stream that inflates, ended with the object. */
class Inflater
{
public:
    Inflater()
    {
        // A window of 15 bits; 32 more let zlib take a zlib or a gzip header.
        constexpr int WindowBits = 15 + 32;
        // The version of zlib that this code was written for, whichever it is built with;
        // inflateInit2 would name the latter. zlib only refuses other major versions.
        m_isValid = inflateInit2_(&m_stream, WindowBits, "1.2.7", sizeof m_stream) == Z_OK;
    }
    ~Inflater()
    {
        if (m_isValid) {
            inflateEnd(&m_stream);
        }
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    bool isValid() const { return m_isValid; }
    void setInput(Chunk& chunk, std::size_t size)
    {
        m_stream.next_in = chunk.bytes.data();
        m_stream.avail_in = static_cast<uInt>(size);
    }
    /** Inflates as much as fits into the chunk. Returns zlib's result. */
    int inflateInto(Chunk& chunk)
    {
        m_stream.next_out = chunk.bytes.data();
        m_stream.avail_out = ChunkSize;
        return inflate(&m_stream, Z_NO_FLUSH);
    }
    /** Number of bytes that the last inflateInto gave. */
    std::size_t produced() const { return ChunkSize - m_stream.avail_out; }

private:
    z_stream m_stream{};
    bool m_isValid;
};

/** Whether zlib's result ends the work; a lack of input or of room (Z_BUF_ERROR) does not. */
bool isFailure(int result)
{
    return result == Z_NEED_DICT || result == Z_DATA_ERROR || result == Z_MEM_ERROR;
}

} // namespace

int Bsp_inflateArchive(int fd, std::FILE* file)
{
    TRACE_ENTER_WITH(bspTrace, "fd=" << fd);
    Inflater inflater;
    if (!inflater.isValid()) {
        return -1;
    }
    Chunk input;
    Chunk output;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        const ssize_t count = Bsp_readHelper(fd, input.bytes.data(), ChunkSize);
        if (count == -1) {
            TRACE_MESSAGE(bspTrace, trace::Error,
                          "Read failed with errno = " << syscalls::errnoText(errno));
            return -1;
        }
        if (count == 0) {
            TRACE_MESSAGE(bspTrace, trace::Result, "End-of-file reached");
            return -1;
        }
        inflater.setInput(input, static_cast<std::size_t>(count));
        do {
            result = inflater.inflateInto(output);
            if (isFailure(result)) {
                TRACE_MESSAGE(bspTrace, trace::Error, "inflate() failed with error " << result);
                return -1;
            }
            const std::size_t size = inflater.produced();
            if (std::fwrite(output.bytes.data(), 1, size, file) != size || std::ferror(file) != 0) {
                TRACE_MESSAGE(bspTrace, trace::Error, "fwrite() failed");
                return -1;
            }
        } while (inflater.produced() == ChunkSize);
    }
    return 0;
}

} // namespace os::bsp
