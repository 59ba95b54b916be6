#include "BaseBoard.h"
#include "BoardDirectory.h"
#include "FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>

namespace
{

constexpr int BaseBoardEeprom = 5;
constexpr int HardwareCodeArea = 1;

using HardwareCode = std::array<uint8_t, 8>;

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
    const FileDescriptor file(
        ::open(boarddirectory::entryPath("eeprom").c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return errno;
    }
    HardwareCode code{};
    const int error = readCode(file.get(), code);
    if (error == 0) {
        std::copy(code.begin(), code.end(), buffer);
    }
    return error;
}
