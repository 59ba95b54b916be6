#include "Files.h"

#include "Failure.h"
#include "FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace files
{

namespace
{

namespace fs = std::filesystem;

constexpr mode_t FileMode = 0666;

std::string quoted(const fs::path& path)
{
    return "'" + path.string() + "'";
}

FileDescriptor open(const fs::path& path, int flags, const char* purpose)
{
    FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, FileMode));
    if (!file.isOpen()) {
        throw Failure(std::string("cannot ") + purpose + ' ' + quoted(path), errno);
    }
    return file;
}

std::string readFile(const FileDescriptor& file, const fs::path& path, std::size_t size)
{
    std::string contents(size, '\0');
    std::size_t have = 0;
    while (have < size) {
        const ssize_t count = ::read(file.get(), contents.data() + have, size - have);
        if (count > 0) {
            have += static_cast<std::size_t>(count);
        } else if (count == 0) {
            break;
        } else if (errno != EINTR) {
            throw Failure("cannot read " + quoted(path), errno);
        }
    }
    contents.resize(have);
    return contents;
}

/** Devices give their memory to a mapping only; reading them has another meaning. */
std::string readMapped(const FileDescriptor& file, const fs::path& path, std::size_t size)
{
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED) {
        throw Failure("cannot read " + quoted(path), errno);
    }
    // Registers are whole words, so they are copied by words.
    std::string contents(size, '\0');
    const auto* words = static_cast<const volatile std::uint32_t*>(memory);
    for (std::size_t offset = 0; offset + sizeof *words <= size; offset += sizeof *words) {
        const std::uint32_t word = words[offset / sizeof *words];
        std::copy_n(reinterpret_cast<const char*>(&word), sizeof word, contents.data() + offset);
    }
    ::munmap(memory, size);
    return contents;
}

void write(const FileDescriptor& file, const fs::path& path, const std::string& contents)
{
    std::size_t done = 0;
    while (done < contents.size()) {
        const ssize_t count = ::write(file.get(), contents.data() + done, contents.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw Failure("cannot write " + quoted(path), errno);
        }
    }
}

} // namespace

std::string readStart(const fs::path& path, std::size_t size)
{
    const FileDescriptor file = open(path, O_RDONLY, "read");
    struct stat status
    {};
    if (::fstat(file.get(), &status) != 0) {
        throw Failure("cannot read " + quoted(path), errno);
    }
    return S_ISCHR(status.st_mode) ? readMapped(file, path, size) : readFile(file, path, size);
}

void create(const fs::path& path, const std::string& contents)
{
    write(open(path, O_WRONLY | O_CREAT | O_EXCL, "create"), path, contents);
}

void replace(const fs::path& path, const std::string& contents)
{
    write(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, "write"), path, contents);
}

void overwriteStart(const fs::path& path, const std::string& contents)
{
    write(open(path, O_WRONLY, "write"), path, contents);
}

void makeSharedDirectory(const fs::path& path)
{
    // As the directories that it stands for: everyone's, each file its owner's.
    constexpr mode_t mode = 01777;
    if (::mkdir(path.c_str(), mode) != 0 || ::chmod(path.c_str(), mode) != 0) {
        throw Failure("cannot create " + quoted(path), errno);
    }
}

void empty(const fs::path& directory)
{
    try {
        for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
            fs::remove_all(entry.path());
        }
    } catch (const fs::filesystem_error& error) {
        throw Failure("cannot empty " + quoted(directory), error.code().value());
    }
}

} // namespace files
