#include "board/Directory.h"
#include "report/Failure.h"

#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>

namespace
{

// Somebody may put things into a directory as fast as they are taken out.
constexpr int Attempts = 100;

using Stream = std::unique_ptr<DIR, int (*)(DIR*)>;

/** The names in a directory. */
std::vector<std::string> names(int directory)
{
    std::vector<std::string> result;
    const int own = ::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const Stream stream(own == -1 ? nullptr : ::fdopendir(own), ::closedir);
    if (!stream) {
        throw std::system_error(errno, std::generic_category());
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody else has this stream
    while (const dirent* const entry = ::readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            result.push_back(name);
        }
    }
    return result;
}

void removeAll(int directory);

/** Whether the entry is gone; false when it is a directory that still holds something. */
bool tryToRemove(int directory, const char* name)
{
    if (::unlinkat(directory, name, 0) == 0 || errno == ENOENT) {
        return true;
    }
    const int error = errno;
    const syscalls::FileDescriptor child(
        ::openat(directory, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (child.isOpen()) {
        removeAll(child.get());
        if (::unlinkat(directory, name, AT_REMOVEDIR) == 0 || errno == ENOENT) {
            return true;
        }
        if (errno != ENOTEMPTY && errno != ENOTDIR) {
            throw std::system_error(errno, std::generic_category());
        }
        return false;
    }
    // What is no directory any more gets another try.
    if (errno != ENOENT && errno != ENOTDIR && errno != ELOOP) {
        throw std::system_error(errno, std::generic_category());
    }
    if (error != EISDIR) {
        throw std::system_error(error, std::generic_category());
    }
    return errno == ENOENT;
}

void removeAll(int directory)
{
    for (const std::string& name : names(directory)) {
        int attempts = 0;
        while (!tryToRemove(directory, name.c_str())) {
            if (++attempts == Attempts) {
                throw std::system_error(ENOTEMPTY, std::generic_category());
            }
        }
    }
}

} // namespace

std::vector<std::string> namesIn(const Directory& directory)
{
    try {
        return names(directory.fd());
    } catch (const std::system_error& error) {
        throw Failure("cannot read '" + directory.name().string() + "'", error.code().value());
    }
}

void removeContents(const Directory& directory)
{
    try {
        removeAll(directory.fd());
    } catch (const std::system_error& error) {
        throw Failure("cannot empty '" + directory.name().string() + "'", error.code().value());
    }
}
