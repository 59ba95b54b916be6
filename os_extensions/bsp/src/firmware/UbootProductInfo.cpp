#include "Bsp.h"
#include "BspTrace.h"
#include "ErrnoText.h"
#include "HvxMessage.h"
#include "firmware/ImageFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <sys/sysinfo.h>
#include <unistd.h>

using os::bsp::bspTrace;

namespace
{

syscalls::FileDescriptor openDevice(const char* name)
{
    if (name == nullptr) {
        errno = EFAULT;
        return syscalls::FileDescriptor(-1);
    }
    return syscalls::FileDescriptor(::open(name, O_RDONLY | O_CLOEXEC));
}

/** All the memory that the machine has. */
std::uintmax_t totalMemory()
{
    struct sysinfo machine = {};
    if (::sysinfo(&machine) != 0) {
        return UINTMAX_MAX;
    }
    return (std::uintmax_t{machine.totalram} + machine.totalswap) * machine.mem_unit;
}

/** Room for that many bytes, or null. */
std::unique_ptr<char[]> allocate(std::uintmax_t size)
{
    // The kernel may promise more than there is, and kill whoever takes it at its word.
    if (size > std::min<std::uintmax_t>(totalMemory(), PTRDIFF_MAX)) {
        return nullptr;
    }
    return std::unique_ptr<char[]>(new (std::nothrow) char[static_cast<std::size_t>(size)]);
}

/** A line of the image that the caller wants the value of. */
struct Line
{
    std::string_view label;
    const char* name;
    char* buffer;
    unsigned int size;
};

/** What stands behind a label, up to the next NUL at the most. */
struct Value
{
    bool isFound;
    std::size_t offset; /**< Of the label in the image. */
    const char* text;
};

/** @p image is followed by a NUL. */
Value findValue(std::string_view image, std::string_view label)
{
    const std::size_t offset = image.find(label);
    if (offset == std::string_view::npos) {
        return {false, 0, "Not found"};
    }
    return {true, offset, image.data() + offset + label.size()};
}

/** Copies the value's line, as far as the buffer goes; the rest of it is zeroed. */
void copyLine(const Value& value, char* buffer, unsigned int size)
{
    std::strncpy(buffer, value.text, size);
    buffer[size - 1] = '\0';
    if (char* newline = std::strchr(buffer, '\n')) {
        *newline = '\0';
    }
}

} // namespace

int Bsp_getUbootProductInfo(const char* deviceName, char* productNumber,
                            unsigned int productNumberSize, char* rstate, unsigned int rstateSize)
{
    if (productNumberSize == 0 || rstateSize == 0) {
        return -1;
    }
    const syscalls::FileDescriptor device = openDevice(deviceName);
    if (!device.isOpen()) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Failed to open u-boot device with name "
                          << os::bsp::printable(deviceName)
                          << ". errno = " << syscalls::errnoText(errno));
        return -1;
    }
    const off_t size = ::lseek(device.get(), 0, SEEK_END);
    if (size == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Failed to get size of " << deviceName
                                               << ". errno = " << syscalls::errnoText(errno));
        return -1;
    }
    if (::lseek(device.get(), 0, SEEK_SET) == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Failed to set file offset. errno = " << syscalls::errnoText(errno));
        return -1;
    }
    const std::uintmax_t capacity = static_cast<std::uintmax_t>(size) + 1;
    const std::unique_ptr<char[]> image = allocate(capacity);
    if (!image) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Failed to allocate " << capacity << " bytes");
        return -1;
    }
    const ssize_t count =
        os::bsp::Bsp_readHelper(device.get(), image.get(), static_cast<std::size_t>(size));
    if (count == -1) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Failed to read file. errno = " << syscalls::errnoText(errno));
        return -1;
    }
    image[static_cast<std::size_t>(count)] = '\0';

    TRACE_MESSAGE(bspTrace, trace::Entry, "Start parsing for u-boot strings:");
    const std::string_view bytes(image.get(), static_cast<std::size_t>(count));
    const Line lines[] = {
        {"Product number: ", "Product number", productNumber, productNumberSize},
        {"R-state: ", "R-state", rstate, rstateSize},
    };
    for (const Line& line : lines) {
        const Value value = findValue(bytes, line.label);
        if (value.isFound) {
            TRACE_MESSAGE(bspTrace, trace::Entry,
                          '"' << line.label << "\" found at offset " << value.offset);
        }
        copyLine(value, line.buffer, line.size);
        TRACE_MESSAGE(bspTrace, trace::Information, line.name << " = " << line.buffer);
    }
    return 0;
}
