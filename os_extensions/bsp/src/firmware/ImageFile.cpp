#include "firmware/ImageFile.h"

#include "BspTrace.h"
#include "HvxMessage.h"

#include <cerrno>

#include <unistd.h>

namespace os::bsp
{

ssize_t Bsp_readHelper(int fd, void* buffer, std::size_t size)
{
    char* position = static_cast<char*>(buffer);
    std::size_t remaining = size;
    for (;;) {
        const ssize_t result = ::read(fd, position, remaining);
        TRACE_MESSAGE(bspTrace, trace::Detail, "Read " << result << " bytes");
        if (result == -1) {
            if (errno != EINTR) {
                return -1;
            }
            TRACE_MESSAGE(bspTrace, trace::Result, "read was interrupted. Retrying...");
            continue;
        }
        position += result;
        remaining -= static_cast<std::size_t>(result);
        if (result == 0 || remaining == 0) {
            return static_cast<ssize_t>(size - remaining);
        }
    }
}

} // namespace os::bsp
