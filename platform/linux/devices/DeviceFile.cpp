#include "DeviceFile.h"
#include "BoardDirectory.h"
#include "Hardware.h"
#include "OpenFile.h"

#include <cerrno>
#include <utility>

#include <sys/stat.h>

namespace DDevIo
{

namespace
{

/** The least size of a file in place of the device: who maps more of it is killed. */
off_t leastSize(const std::string& name)
{
    return name == hardware::WarmAreaDevice ? off_t{hardware::WarmAreaSize} : 0;
}

/** Whether the file can be the device; 0, or the errno value of why not. */
int check(int fd, const struct stat& status, const std::string& name)
{
    if (S_ISREG(status.st_mode)) {
        return status.st_size >= leastSize(name) ? 0 : EIO;
    }
    return S_ISCHR(status.st_mode) && ::isatty(fd) == 0 ? 0 : ENODEV;
}

} // namespace

DeviceFile openDevice(const std::string& name, int access)
{
    if (!boarddirectory::isEntryName(name)) {
        errno = EINVAL;
        return {};
    }
    syscalls::FileDescriptor file =
        openFile(boarddirectory::entryPath(name), access | O_NOCTTY | O_NONBLOCK);
    struct stat status
    {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return {};
    }
    if (const int error = check(file.get(), status, name)) {
        file = syscalls::FileDescriptor();
        errno = error;
        return {};
    }
    // Only the opening must not wait.
    if (::fcntl(file.get(), F_SETFL, 0) != 0) {
        return {};
    }
    return {std::move(file), S_ISREG(status.st_mode)};
}

} // namespace DDevIo
