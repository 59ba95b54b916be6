#include "SettingsFile.h"
#include "FullRead.h"
#include "OpenFile.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <tuple>

namespace settings
{

namespace
{

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

std::pair<std::time_t, long> asPair(const timespec& time)
{
    return {time.tv_sec, time.tv_nsec};
}

/** The time that a change of a file would get now. */
timespec timeOfChanges()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace

FileState::FileState(const struct stat& status)
    : device(status.st_dev), inode(status.st_ino), size(status.st_size), modified(status.st_mtim),
      changed(status.st_ctim)
{}

bool FileState::operator==(const FileState& other) const
{
    return std::tie(device, inode, size) == std::tie(other.device, other.inode, other.size) &&
           asPair(modified) == asPair(other.modified) && asPair(changed) == asPair(other.changed);
}

bool FileState::isSettled(const timespec& now) const
{
    // Some file systems count in steps of two seconds.
    const std::time_t step = changed.tv_nsec == 0 ? 2 : 0;
    return std::make_pair(changed.tv_sec + step, changed.tv_nsec) < asPair(now);
}

std::optional<FileState> stateOf(const std::string& path)
{
    struct stat status
    {};
    if (::stat(path.c_str(), &status) == 0) {
        return FileState(status);
    }
    if (errno != ENOENT) {
        fail("cannot open");
    }
    return std::nullopt;
}

std::optional<Contents> read(const std::string& path)
{
    // A pipe or a terminal at that place must not make anyone wait.
    const syscalls::FileDescriptor file = openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen() && errno == ENOENT) {
        refuseFormerFormat(path);
        return std::nullopt;
    }
    if (!file.isOpen()) {
        fail("cannot open");
    }
    const timespec now = timeOfChanges();
    const FileState state(statusOfRegularFile(file));
    return Contents{state, state.isSettled(now), SettingsText(bytesOf(file)).entries()};
}

struct stat statusOfRegularFile(const syscalls::FileDescriptor& file)
{
    struct stat status
    {};
    if (::fstat(file.get(), &status) != 0) {
        fail("cannot look at it");
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error("not a regular file");
    }
    if (status.st_size > static_cast<off_t>(MaxFileSize)) {
        throw std::runtime_error("larger than " + std::to_string(MaxFileSize) + " bytes");
    }
    return status;
}

std::string bytesOf(const syscalls::FileDescriptor& file)
{
    constexpr std::size_t PieceSize = 4096;
    std::string bytes;
    std::array<char, PieceSize> piece{};
    while (bytes.size() <= MaxFileSize) {
        const ssize_t size = syscalls::readFully(file.get(), piece.data(), piece.size());
        if (size == -1) {
            fail("cannot read");
        }
        bytes.append(piece.data(), static_cast<std::size_t>(size));
        if (static_cast<std::size_t>(size) < piece.size()) {
            return bytes;
        }
    }
    throw std::runtime_error("larger than " + std::to_string(MaxFileSize) + " bytes");
}

void refuseFormerFormat(const std::string& path)
{
    const std::string former = path.substr(0, path.rfind('/') + 1) + "config.mdb";
    struct stat status
    {};
    if (::lstat(former.c_str(), &status) == 0) {
        throw std::runtime_error(
            "there is a " + former +
            " of an earlier version; write its values as key=value lines into " + path +
            " and remove it");
    }
}

} // namespace settings
