#include "BaseBoard.h"
#include "BoardDirectory.h"
#include "Entries.h"
#include "FullRead.h"
#include "Hardware.h"
#include "OpenFile.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace
{

using HardwareCode = std::array<uint8_t, hardware::HardwareCodeSize>;

/** Whether a file is what can be read without waiting; 0, or the errno value of what it is not. */
int checkType(int fd)
{
    struct stat status
    {};
    if (::fstat(fd, &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return S_ISREG(status.st_mode) ? 0 : ENODEV;
}

/** Fills the code from the file; 0, or the errno value of what failed. */
int readCode(int fd, HardwareCode& code)
{
    const ssize_t count = syscalls::readFully(fd, code.data(), code.size());
    if (count == -1) {
        return errno;
    }
    return static_cast<std::size_t>(count) < code.size() ? EIO : 0;
}

} // namespace

int e2prom_data_read(int device, int area, uint8_t* buffer)
{
    if (device != hardware::BaseBoardEeprom || area != hardware::HardwareCodeArea ||
        buffer == nullptr) {
        return EINVAL;
    }
    const syscalls::FileDescriptor file = openFile(
        boarddirectory::entryPath(boarddirectory::entry::Eeprom), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    if (!file.isOpen()) {
        return errno;
    }
    if (const int error = checkType(file.get())) {
        return error;
    }
    HardwareCode code{};
    const int error = readCode(file.get(), code);
    if (error == 0) {
        std::copy(code.begin(), code.end(), buffer);
    }
    return error;
}
