#include "Bsp.h"
#include "BspTrace.h"
#include "HvxMessage.h"
#include "InflatedImage.h"
#include "firmware/ImageFile.h"
#include "firmware/KernelImage.h"
#include "firmware/TemporaryFile.h"

#include <memory>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

using os::bsp::bspTrace;
using os::bsp::InflatedImage;

off_t os::bsp::Bsp_findArchive(int fd)
{
    constexpr std::size_t BytesToScan = 65536;
    // gzip's magic and the number of its only method.
    constexpr std::string_view Header = "\x1F\x8B\x08";

    TRACE_ENTER_WITH(bspTrace, "fd=" << fd);
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[BytesToScan]);
    const ssize_t count = buffer ? Bsp_readHelper(fd, buffer.get(), BytesToScan) : -1;
    if (count <= 0) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "File error before archive found. read() returned " << count);
        return -1;
    }
    const std::string_view scanned(buffer.get(), static_cast<std::size_t>(count));
    const std::size_t position = scanned.find(Header);
    if (position == std::string_view::npos) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Couldn't find ZLIB header");
        return -1;
    }
    TRACE_MESSAGE(bspTrace, trace::Information, "ZLIB header found at pos " << position);
    return static_cast<off_t>(position);
}

int Bsp_getKernelRState(const char* fileName, char* rstate, unsigned int size)
{
    TRACE_ENTER_WITH(bspTrace, os::bsp::printable(fileName));
    if (size < os::bsp::KernelRStateSize) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Invalid buffer size: " << size);
        return -1;
    }
    if (fileName == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Undefined filename");
        return -1;
    }
    const syscalls::FileDescriptor image(::open(fileName, O_RDONLY | O_CLOEXEC));
    if (!image.isOpen()) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Could not open file: " << fileName);
        return -1;
    }
    if (::lseek(image.get(), 0, SEEK_SET) == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error, "lseek(zImage, 0, SEEK_SET) failed for " << fileName);
        return -1;
    }
    const off_t archive = os::bsp::Bsp_findArchive(image.get());
    if (archive == -1) {
        return -1;
    }
    if (::lseek(image.get(), archive, SEEK_SET) == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "lseek(zImage, " << archive << ", SEEK_SET) failed for " << fileName);
        return -1;
    }
    const os::bsp::TemporaryFile inflated(InflatedImage);
    if (inflated.stream() == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Could not open tmp file: " << InflatedImage);
        return -1;
    }
    const int result = os::bsp::Bsp_inflateArchive(image.get(), inflated.stream());
    if (result != 0) {
        return result;
    }
    TRACE_MESSAGE(bspTrace, trace::Information, "Bsp_inflateArchive() successful");
    return os::bsp::Bsp_findLinuxVersion(inflated.stream(), rstate);
}
