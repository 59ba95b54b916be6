#include "board/Files.h"

#include "DeviceMemory.h"
#include "FullRead.h"
#include "report/Failure.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace files
{

namespace
{

namespace fs = std::filesystem;

std::string quoted(const fs::path& path)
{
    return "'" + path.string() + "'";
}

std::string readFile(const syscalls::FileDescriptor& file, const fs::path& path, std::size_t size)
{
    std::string contents(size, '\0');
    const ssize_t count = syscalls::readFully(file.get(), contents.data(), size);
    if (count == -1) {
        throw Failure("cannot read " + quoted(path), errno);
    }
    contents.resize(static_cast<std::size_t>(count));
    return contents;
}

/** Devices give their memory to a mapping only; reading them has another meaning. */
std::string readMapped(const syscalls::FileDescriptor& file, const fs::path& path, std::size_t size)
{
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED) {
        throw Failure("cannot read " + quoted(path), errno);
    }
    std::string contents = bytesOfDevice(memory, size);
    ::munmap(memory, size);
    return contents;
}

} // namespace

std::string readStart(const fs::path& path, std::size_t size)
{
    const syscalls::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status
    {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        throw Failure("cannot read " + quoted(path), errno);
    }
    return S_ISCHR(status.st_mode) ? readMapped(file, path, size) : readFile(file, path, size);
}

std::string readExactly(const fs::path& path, std::size_t size)
{
    std::string bytes = readStart(path, size);
    if (bytes.size() < size) {
        throw Failure(quoted(path) + " has " + std::to_string(bytes.size()) + " bytes instead of " +
                      std::to_string(size));
    }
    return bytes;
}

bool isThere(const fs::path& path)
{
    std::error_code ignored;
    return fs::exists(path, ignored);
}

void write(const syscalls::FileDescriptor& file, const fs::path& name, const std::string& contents)
{
    std::size_t done = 0;
    while (done < contents.size()) {
        const ssize_t count = ::write(file.get(), contents.data() + done, contents.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw Failure("cannot write " + quoted(name), errno);
        }
    }
}

void replace(const syscalls::FileDescriptor& file, const fs::path& name,
             const std::string& contents)
{
    if (::ftruncate(file.get(), 0) != 0) {
        throw Failure("cannot write " + quoted(name), errno);
    }
    write(file, name, contents);
}

} // namespace files
