#include "ReplacedFile.h"
#include "OpenFile.h"
#include "SettingsFile.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace settings
{

namespace
{

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** Gives a new file what others may do with the former one, and its owner where that is allowed. */
void passOn(const syscalls::FileDescriptor& file, const struct stat& former)
{
    constexpr auto Same = static_cast<uid_t>(-1);
    constexpr mode_t Permissions = 0777;
    const mode_t mode = former.st_mode & Permissions;
    const bool groupMatters = (mode & S_IRWXG) >> 3U != (mode & S_IRWXO);
    if (::fchown(file.get(), former.st_uid, former.st_gid) != 0 &&
        ::fchown(file.get(), Same, former.st_gid) != 0 && groupMatters)
    {
        fail("cannot keep the group");
    }
    if (::fchmod(file.get(), mode) != 0) {
        fail("cannot keep the mode");
    }
}

void writeAll(const syscalls::FileDescriptor& file, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t size = ::write(file.get(), bytes.data() + done, bytes.size() - done);
        if (size == -1 && errno != EINTR) {
            fail("cannot write");
        }
        done += size == -1 ? 0 : static_cast<std::size_t>(size);
    }
}

} // namespace

ReplacedFile::ReplacedFile(const std::string& path)
    : m_name(path.substr(path.rfind('/') + 1)), m_temporary(m_name + ".new"),
      m_directory(openFile(path.substr(0, path.rfind('/') + 1), O_RDONLY | O_DIRECTORY))
{
    if (!m_directory.isOpen()) {
        fail("cannot open the directory");
    }
}

std::optional<ReplacedFile::Former> ReplacedFile::former() const
{
    const syscalls::FileDescriptor file =
        openFileAt(directory(), m_name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen() && errno == ENOENT) {
        return std::nullopt;
    }
    if (!file.isOpen()) {
        fail("cannot open");
    }
    Former former{statusOfRegularFile(file), bytesOf(file)};
    // Whoever cuts it meanwhile, or a disk that gives less, must not cost the other settings.
    if (former.bytes.size() < static_cast<std::size_t>(former.status.st_size)) {
        throw std::runtime_error("cannot read: it ends after " +
                                 std::to_string(former.bytes.size()) + " of " +
                                 std::to_string(former.status.st_size) + " bytes");
    }
    return former;
}

void ReplacedFile::replace(const std::optional<Former>& former, const std::string& bytes) const
{
    moveIntoPlace(former, bytes);
    // EINVAL: a file system whose directories need no such call.
    if (::fsync(directory()) != 0 && errno != EINVAL) {
        const int error = errno;
        undo(former);
        throw std::system_error(error, std::generic_category(), "cannot write the directory");
    }
}

void ReplacedFile::moveIntoPlace(const std::optional<Former>& former,
                                 const std::string& bytes) const
{
    try {
        writeNew(former, bytes);
        if (::renameat(directory(), m_temporary.c_str(), directory(), m_name.c_str()) != 0) {
            fail("cannot move the new file into place");
        }
    } catch (...) {
        ::unlinkat(directory(), m_temporary.c_str(), 0);
        throw;
    }
}

void ReplacedFile::writeNew(const std::optional<Former>& former, const std::string& bytes) const
{
    // A process that was killed may have left one.
    if (::unlinkat(directory(), m_temporary.c_str(), 0) != 0 && errno != ENOENT) {
        fail("cannot remove " + m_temporary);
    }
    const syscalls::FileDescriptor temporary =
        openFileAt(directory(), m_temporary, O_WRONLY | O_CREAT | O_EXCL, former ? 0600 : 0666);
    if (!temporary.isOpen()) {
        fail("cannot make " + m_temporary);
    }
    if (former) {
        passOn(temporary, former->status);
    }
    writeAll(temporary, bytes);
    if (::fsync(temporary.get()) != 0) {
        fail("cannot write");
    }
}

/** Puts back what was there, as well as a disk allows that refuses to write. */
void ReplacedFile::undo(const std::optional<Former>& former) const
{
    if (!former) {
        ::unlinkat(directory(), m_name.c_str(), 0);
        return;
    }
    try {
        moveIntoPlace(former, former->bytes);
    } catch (const std::exception&) {
        // The failure that led here says it all.
    }
}

} // namespace settings
