#include "board/StagingDirectory.h"

#include "board/BoardAccess.h"
#include "report/Failure.h"

#include <cerrno>
#include <cstdio>
#include <random>

#include <fcntl.h>
#include <sys/file.h>

namespace
{

namespace fs = std::filesystem;

constexpr const char* NameStart = ".bsp-board-";

Failure cannotCreate(const fs::path& place, int error)
{
    return {"cannot create '" + place.string() + "'", error};
}

Directory parentOf(const fs::path& place)
{
    const fs::path path = place.has_parent_path() ? place.parent_path() : fs::path(".");
    syscalls::FileDescriptor parent(
        place.empty() ? -1 : ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!parent.isOpen()) {
        throw cannotCreate(place, place.empty() ? ENOENT : errno);
    }
    return {std::move(parent), place.parent_path()};
}

/** Holds a staging directory; false when another program does, or when it is none any more. */
bool holdStaging(const Directory& parent, const std::string& name,
                 const syscalls::FileDescriptor& staging)
{
    struct stat opened
    {};
    if (::flock(staging.get(), LOCK_EX | LOCK_NB) != 0 || ::fstat(staging.get(), &opened) != 0) {
        return false;
    }
    const std::optional<struct stat> named = parent.status(name);
    return opened.st_uid == ::geteuid() && named && named->st_dev == opened.st_dev &&
           named->st_ino == opened.st_ino;
}

void discard(const Directory& parent, const std::string& name, const Directory& staging)
{
    removeContents(staging);
    ::unlinkat(parent.fd(), name.c_str(), AT_REMOVEDIR);
}

void discardIfAbandoned(const Directory& parent, const std::string& name)
{
    syscalls::FileDescriptor staging = parent.openEntry(name, O_RDONLY | O_DIRECTORY);
    if (staging.isOpen() && holdStaging(parent, name, staging)) {
        discard(parent, name, {std::move(staging), parent.nameOf(name)});
    }
}

/** Takes away what killed programs of this user left; nothing depends on it. */
void discardAbandoned(const Directory& parent)
{
    struct stat status
    {};
    // Where others can rename entries, this user's own directories could bear such a name.
    if (::fstat(parent.fd(), &status) != 0 || othersCanReplaceEntries(status)) {
        return;
    }
    try {
        for (const std::string& name : namesIn(parent)) {
            if (name.rfind(NameStart, 0) == 0) {
                discardIfAbandoned(parent, name);
            }
        }
    } catch (const Failure&) {
        // What cannot be removed stays.
    }
}

fs::path withoutSlash(const fs::path& place)
{
    return place.has_filename() ? place : place.parent_path();
}

} // namespace

StagingDirectory::StagingDirectory(const fs::path& place)
    : m_place(withoutSlash(place)), m_parent(parentOf(m_place)), m_directory(makeStaging())
{}

Directory StagingDirectory::makeStaging()
{
    const std::string entry = m_place.filename();
    if (entry.empty() || entry == "." || entry == "..") {
        // What takes its place would not be where programs are that have it as working directory.
        throw Failure("cannot create '" + m_place.string() + "': call the directory by its name");
    }
    const std::optional<struct stat> status = m_parent.status(entry);
    if (status && !S_ISDIR(status->st_mode)) {
        throw cannotCreate(m_place, EEXIST);
    }
    discardAbandoned(m_parent);
    constexpr mode_t any = 0777;
    constexpr int attempts = 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        m_name = NameStart + std::to_string(std::random_device{}());
        if (::mkdirat(m_parent.fd(), m_name.c_str(), any) != 0) {
            continue;
        }
        syscalls::FileDescriptor staging = m_parent.openEntry(m_name, O_RDONLY | O_DIRECTORY);
        if (staging.isOpen() && holdStaging(m_parent, m_name, staging)) {
            return {std::move(staging), m_place};
        }
        // Another program may have taken it for an abandoned one.
        const int error = errno;
        ::unlinkat(m_parent.fd(), m_name.c_str(), AT_REMOVEDIR);
        errno = error;
    }
    throw cannotCreate(m_place, errno);
}

StagingDirectory::~StagingDirectory()
{
    if (m_name.empty()) {
        return;
    }
    try {
        discard(m_parent, m_name, m_directory);
    } catch (const Failure&) {
        // The next program has another try.
    }
}

void StagingDirectory::publish()
{
    const std::string entry = m_place.filename();
    const std::optional<struct stat> status = m_parent.status(entry);
    constexpr mode_t permissions = 07777;
    if (status && ::fchmod(m_directory.fd(), status->st_mode & permissions) != 0) {
        throw cannotCreate(m_place, errno);
    }
    if (::renameat(m_parent.fd(), m_name.c_str(), m_parent.fd(), entry.c_str()) != 0) {
        throw cannotCreate(m_place, errno == ENOTEMPTY || errno == ENOTDIR ? EEXIST : errno);
    }
    m_name.clear();
}
