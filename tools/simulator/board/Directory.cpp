#include "board/Directory.h"

#include "board/Files.h"
#include "report/Failure.h"

#include <cerrno>

#include <fcntl.h>

namespace
{

constexpr int Flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK | O_NOFOLLOW;
constexpr mode_t FileMode = 0666;

Failure failure(const char* purpose, const std::filesystem::path& name)
{
    return {std::string("cannot ") + purpose + " '" + name.string() + "'", errno};
}

} // namespace

std::optional<Directory> Directory::open(const std::filesystem::path& path)
{
    syscalls::FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | Flags));
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    return Directory(std::move(descriptor), path);
}

std::optional<struct stat> Directory::status(const std::string& entry) const
{
    struct stat status
    {};
    if (::fstatat(fd(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return status;
    }
    if (errno == ENOENT) {
        return std::nullopt;
    }
    throw failure("read", nameOf(entry));
}

syscalls::FileDescriptor Directory::openEntry(const std::string& entry, int flags) const
{
    return syscalls::FileDescriptor(::openat(fd(), entry.c_str(), flags | Flags, FileMode));
}

std::optional<Directory> Directory::find(const std::string& entry) const
{
    syscalls::FileDescriptor descriptor = openEntry(entry, O_RDONLY | O_DIRECTORY);
    if (descriptor.isOpen()) {
        return Directory(std::move(descriptor), nameOf(entry));
    }
    if (errno == ENOENT) {
        return std::nullopt;
    }
    throw failure("open", nameOf(entry));
}

Directory Directory::make(const std::string& entry, mode_t mode) const
{
    if (::mkdirat(fd(), entry.c_str(), mode) != 0) {
        throw failure("create", nameOf(entry));
    }
    syscalls::FileDescriptor descriptor = openEntry(entry, O_RDONLY | O_DIRECTORY);
    if (!descriptor.isOpen()) {
        throw failure("create", nameOf(entry));
    }
    return {std::move(descriptor), nameOf(entry)};
}

Directory Directory::makeShared(const std::string& entry) const
{
    constexpr mode_t mode = 01777;
    Directory directory = make(entry, mode);
    if (::fchmod(directory.fd(), mode) != 0) {
        throw failure("create", nameOf(entry));
    }
    return directory;
}

void Directory::createFile(const std::string& entry, const std::string& contents) const
{
    const syscalls::FileDescriptor file = openEntry(entry, O_WRONLY | O_CREAT | O_EXCL);
    if (!file.isOpen()) {
        throw failure("create", nameOf(entry));
    }
    files::write(file, nameOf(entry), contents);
}
