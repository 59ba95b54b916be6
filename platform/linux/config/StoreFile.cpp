#include "StoreFile.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace nxuconfig
{

namespace
{

struct stat statusOf(int fd)
{
    struct stat status
    {};
    if (::fstat(fd, &status) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot look at the file");
    }
    return status;
}

/** Whether a file that cannot be opened for writing may yet be readable. */
bool isNotWritable(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
}

} // namespace

bool leadsTo(const std::string& path, int fd)
{
    struct stat status
    {};
    if (::stat(path.c_str(), &status) == 0) {
        const struct stat open = statusOf(fd);
        return status.st_dev == open.st_dev && status.st_ino == open.st_ino;
    }
    if (errno == ENOENT) {
        return false;
    }
    throw std::system_error(errno, std::generic_category(), "cannot look at the path");
}

std::unique_ptr<StoreFile> StoreFile::open(const std::string& path, LmdbFile::Access needed)
{
    // A pipe at that place must not make anyone wait.
    constexpr int Flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    LmdbFile::Access access = LmdbFile::Access::ReadWrite;
    int fd = ::open(path.c_str(), O_RDWR | Flags);
    if (fd == -1 && isNotWritable(errno) && needed == LmdbFile::Access::Read) {
        access = LmdbFile::Access::Read;
        fd = ::open(path.c_str(), O_RDONLY | Flags);
    }
    if (fd == -1 && errno == ENOENT) {
        return nullptr;
    }
    if (fd == -1) {
        throw std::system_error(errno, std::generic_category(), "cannot open");
    }
    return std::unique_ptr<StoreFile>(new StoreFile(FileDescriptor(fd), access));
}

StoreFile::StoreFile(FileDescriptor file, LmdbFile::Access access)
    : m_file(std::move(file)), m_access(access)
{}

LmdbFile& StoreFile::database()
{
    checkSize();
    if (!m_database) {
        m_database = std::make_unique<LmdbFile>(m_file.get(), m_access);
    }
    return *m_database;
}

/** To touch the mapping of a file that was cut off would end the process. */
void StoreFile::checkSize() const
{
    const struct stat status = statusOf(m_file.get());
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error("not a regular file");
    }
    if (status.st_size < static_cast<off_t>(LmdbFile::Size)) {
        throw std::runtime_error("damaged: it was cut off");
    }
}

} // namespace nxuconfig
