#include "BaseBoard.h"
#include "BoardDirectory.h"
#include "OpenFile.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace
{

constexpr int BaseBoardEeprom = 5;
constexpr int HardwareCodeArea = 1;

using HardwareCode = std::array<uint8_t, 8>;

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
    std::size_t have = 0;
    while (have < code.size()) {
        const ssize_t count = ::read(fd, code.data() + have, code.size() - have);
        if (count > 0) {
            have += static_cast<std::size_t>(count);
        } else if (count == 0) {
            return EIO;
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

int e2prom_data_read(int device, int area, uint8_t* buffer)
{
    if (device != BaseBoardEeprom || area != HardwareCodeArea || buffer == nullptr) {
        return EINVAL;
    }
    const FileDescriptor file =
        openFile(boarddirectory::entryPath("eeprom"), O_RDONLY | O_NOCTTY | O_NONBLOCK);
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
