#include "firmware/ImageFile.h"

#include "BspTrace.h"
#include "FullRead.h"
#include "HvxMessage.h"

namespace os::bsp
{

ssize_t Bsp_readHelper(int fd, void* buffer, std::size_t size)
{
    syscalls::FullRead reading(fd, buffer, size);
    while (!reading.isDone()) {
        const ssize_t result = reading.step();
        TRACE_MESSAGE(bspTrace, trace::Detail, "Read " << result << " bytes");
        if (reading.isInterrupted()) {
            TRACE_MESSAGE(bspTrace, trace::Result, "read was interrupted. Retrying...");
        }
    }
    return reading.result();
}

} // namespace os::bsp
