#include "WriterLock.h"
#include "OpenFile.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace settings
{

namespace
{

constexpr mode_t Writable = S_IWUSR | S_IWGRP | S_IWOTH;

/** The mode of a new lock: beside a file, that of its maker alone until it is shared. */
mode_t firstMode(const std::optional<struct stat>& status)
{
    return status ? S_IWUSR : Writable;
}

/** Lets those open the lock, for writing only, who can write the file. */
void share(const syscalls::FileDescriptor& lock, const std::optional<struct stat>& status)
{
    if (status) {
        // Who may not do so either can do without.
        [[maybe_unused]] const int owned = ::fchown(lock.get(), status->st_uid, status->st_gid);
        ::fchmod(lock.get(), (status->st_mode & Writable) | S_IWUSR);
    }
}

} // namespace

WriterLock::WriterLock(int directory, const std::string& name,
                       const std::optional<struct stat>& status, const Deadline& deadline)
    : m_directory(directory), m_name(name + ".lock")
{
    while (!tryToLock(status)) {
        if (!deadline.wait()) {
            if (!open().isOpen() && errno == EACCES) {
                throw std::system_error(errno, std::generic_category(), "cannot open " + m_name);
            }
            throw std::runtime_error("another process holds " + m_name);
        }
    }
}

WriterLock::~WriterLock()
{
    if (leadsTo(m_file)) {
        ::unlinkat(m_directory, m_name.c_str(), 0);
    }
}

/** False when another has it, or had it until now. */
bool WriterLock::tryToLock(const std::optional<struct stat>& status)
{
    syscalls::FileDescriptor file = open();
    if (!file.isOpen() && errno == ENOENT) {
        file = make(status);
    }
    if (!file.isOpen()) {
        // Another user's may not be open to us yet; it goes when that user is done.
        if (errno == EACCES || errno == EEXIST || errno == ENOENT) {
            return false;
        }
        throw std::system_error(errno, std::generic_category(), "cannot open " + m_name);
    }
    // This kind of lock, unlike those of open files, is not inherited by forked processes.
    struct flock lock
    {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    if (::fcntl(file.get(), F_SETLK, &lock) != 0) {
        if (errno == EACCES || errno == EAGAIN || errno == EINTR) {
            return false;
        }
        throw std::system_error(errno, std::generic_category(), "cannot lock " + m_name);
    }
    if (!leadsTo(file)) {
        return false;
    }
    m_file = std::move(file);
    return true;
}

syscalls::FileDescriptor WriterLock::open() const
{
    return openFileAt(m_directory, m_name, O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
}

syscalls::FileDescriptor WriterLock::make(const std::optional<struct stat>& status) const
{
    syscalls::FileDescriptor file = makeWhole(status);
    if (file.isOpen() || errno == EEXIST) {
        return file;
    }
    file = openFileAt(m_directory, m_name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW,
                      firstMode(status));
    if (!file.isOpen() && errno != EEXIST) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + m_name);
    }
    if (file.isOpen()) {
        share(file, status);
    }
    return file;
}

/**
 * Gives the lock its name when others can open it, so that a process that is killed leaves nothing
 * that they cannot open. Not every file system, and not every sandbox, allows that.
 */
syscalls::FileDescriptor WriterLock::makeWhole(const std::optional<struct stat>& status) const
{
    syscalls::FileDescriptor file =
        openFileAt(m_directory, ".", O_WRONLY | O_TMPFILE, firstMode(status));
    if (!file.isOpen()) {
        return file;
    }
    share(file, status);
    const std::string unnamed = "/proc/self/fd/" + std::to_string(file.get());
    if (::linkat(AT_FDCWD, unnamed.c_str(), m_directory, m_name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        return {};
    }
    return file;
}

bool WriterLock::leadsTo(const syscalls::FileDescriptor& file) const
{
    struct stat named
    {};
    struct stat open
    {};
    return ::fstatat(m_directory, m_name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           ::fstat(file.get(), &open) == 0 && named.st_dev == open.st_dev &&
           named.st_ino == open.st_ino;
}

} // namespace settings
