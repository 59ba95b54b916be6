#include "DDevIo.h"
#include "DeviceFile.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

// A device's handle is its file descriptor.

int DDevIo_open(const char* name)
{
    return DDevIo::openDevice(name == nullptr ? "" : name, O_RDWR).descriptor.release();
}

int DDevIo_getFileDescriptor(int handle)
{
    return handle;
}

int DDevIo_close(int handle)
{
    // Interrupted or not, the descriptor is gone after the call.
    return ::close(handle) == 0 || errno == EINTR ? 0 : -1;
}
