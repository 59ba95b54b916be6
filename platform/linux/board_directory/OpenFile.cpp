#include "OpenFile.h"

#include <array>
#include <utility>

#include <unistd.h>

namespace
{

/** Holds the standard streams' descriptors that are free; nothing can be read or written there. */
class Placeholders
{
public:
    Placeholders()
    {
        for (syscalls::FileDescriptor& held : m_held) {
            syscalls::FileDescriptor lowest(::open("/", O_PATH | O_CLOEXEC));
            if (lowest.get() > STDERR_FILENO) {
                break;
            }
            held = std::move(lowest);
        }
    }

private:
    std::array<syscalls::FileDescriptor, STDERR_FILENO + 1> m_held;
};

} // namespace

syscalls::FileDescriptor openFileAt(int directory, const std::string& path, int flags, mode_t mode)
{
    const Placeholders placeholders;
    syscalls::FileDescriptor file(::openat(directory, path.c_str(), flags | O_CLOEXEC, mode));
    if (file.isOpen() && file.get() <= STDERR_FILENO) {
        // Another thread gave the descriptor back meanwhile.
        return syscalls::FileDescriptor(::fcntl(file.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    }
    return file;
}
