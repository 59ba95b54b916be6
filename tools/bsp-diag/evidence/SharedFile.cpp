#include "evidence/SharedFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sysmacros.h>

FileIdentity identityOf(const struct stat& status)
{
    constexpr std::size_t enough = 32;
    std::array<char, enough> device{};
    static_cast<void>(std::snprintf(device.data(), device.size(), "%02x:%02x",
                                    ::major(status.st_dev), ::minor(status.st_dev)));
    return {device.data(), status.st_ino};
}

FileIdentity identityOf(const std::string& path)
{
    struct stat status
    {};
    return ::stat(path.c_str(), &status) == 0 ? identityOf(status) : FileIdentity{};
}

std::optional<ListedFile> listedFile(const syscalls::FileDescriptor& file, std::size_t size)
{
    // Never touched: behind the end of the file there is nothing.
    void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED) {
        return std::nullopt;
    }
    std::optional<ListedFile> result;
    const auto mappings = sharedMappings("/proc/self/maps");
    for (const Mapping& mapping : mappings.value_or(std::vector<Mapping>())) {
        if (mapping.begin == reinterpret_cast<std::uintptr_t>(memory)) {
            result = ListedFile{mapping.file, mapping.path};
        }
    }
    ::munmap(memory, size);
    return result;
}

std::string bytesOf(const syscalls::FileDescriptor& file, std::size_t size)
{
    std::string bytes(size, '\0');
    std::size_t have = 0;
    while (have < size) {
        const ssize_t count =
            ::pread(file.get(), bytes.data() + have, size - have, static_cast<off_t>(have));
        if (count > 0) {
            have += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    bytes.resize(have);
    return bytes;
}

std::optional<SharedFile> SharedFile::look(const std::string& path)
{
    SharedFile result;
    result.m_path = path;
    if (::lstat(path.c_str(), &result.m_status) != 0) {
        return std::nullopt;
    }
    result.m_listed = {identityOf(result.m_status), path};
    // Anything else than a file may do something when it is opened.
    if (!result.isRegular()) {
        return result;
    }
    syscalls::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened
    {};
    if (file.isOpen() && ::fstat(file.get(), &opened) == 0 && S_ISREG(opened.st_mode)) {
        result.m_status = opened;
        const std::optional<ListedFile> listed = listedFile(file, 1);
        result.m_listed = listed.value_or(ListedFile{identityOf(opened), path});
        result.m_file = std::move(file);
    }
    return result;
}

std::string SharedFile::kind() const
{
    if (S_ISLNK(m_status.st_mode)) {
        return "a symbolic link";
    }
    return S_ISDIR(m_status.st_mode) ? "a directory" : "a pipe, socket or device";
}

std::string SharedFile::bytes(std::size_t size) const
{
    return m_file.isOpen() ? bytesOf(m_file, size) : "";
}

std::string SharedFile::listedDirectory() const
{
    return m_listed.path.substr(0, m_listed.path.rfind('/'));
}

std::string SharedFile::text() const
{
    return m_path + ", of user " + std::to_string(m_status.st_uid) + ", last changed " +
           timeText(m_status.st_ctim.tv_sec);
}
