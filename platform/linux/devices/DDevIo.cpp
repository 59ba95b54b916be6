#include "DDevIo.h"
#include "BoardDirectory.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

// A device's handle is its file descriptor.

int DDevIo_open(const char* name)
{
    if (name == nullptr || !boarddirectory::isEntryName(name)) {
        errno = EINVAL;
        return -1;
    }
    return ::open(boarddirectory::entryPath(name).c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY);
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
