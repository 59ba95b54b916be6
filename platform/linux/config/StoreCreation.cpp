#include "StoreCreation.h"
#include "FileLock.h"
#include "StoreFile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace nxuconfig
{

namespace
{

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** Whether there is an entry of that name. @throws std::runtime_error for a link to nowhere */
bool exists(const std::string& path)
{
    struct stat entry
    {};
    if (::lstat(path.c_str(), &entry) != 0) {
        return false;
    }
    struct stat target
    {};
    if (S_ISLNK(entry.st_mode) && ::stat(path.c_str(), &target) != 0 && errno == ENOENT) {
        throw std::runtime_error("a link to nowhere");
    }
    return true;
}

FileDescriptor openDraft(const std::string& path)
{
    FileDescriptor file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, 0666));
    if (!file.isOpen()) {
        fail("cannot create");
    }
    return file;
}

void resize(int fd, std::size_t size)
{
    if (::ftruncate(fd, static_cast<off_t>(size)) != 0) {
        fail("cannot set the size");
    }
}

/** Makes the names in the file's directory durable. */
void syncDirectory(const std::string& path)
{
    const std::string directory = path.substr(0, path.rfind('/') + 1);
    const FileDescriptor file(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!file.isOpen()) {
        fail("cannot open the directory");
    }
    // EINVAL: a file system whose directories need no such call.
    if (::fsync(file.get()) != 0 && errno != EINVAL) {
        fail("cannot write the directory");
    }
}

void moveIntoPlace(const std::string& draft, const std::string& path)
{
    if (::rename(draft.c_str(), path.c_str()) != 0) {
        fail("cannot move into place");
    }
    try {
        syncDirectory(path);
    } catch (...) {
        ::unlink(path.c_str());
        throw;
    }
}

/** Fills the locked draft and moves it into place. */
void complete(const FileDescriptor& file, const std::string& draft, const std::string& path,
              const std::string& key, const std::string& value)
{
    resize(file.get(), 0); // Someone may have been killed in the middle of this.
    LmdbFile database(file.get(), LmdbFile::Access::ReadWrite);
    resize(file.get(), LmdbFile::Size);
    database.write(key, value);
    if (::fsync(file.get()) != 0) {
        fail("cannot write");
    }
    // The end of the database is the end of the lock, too, so it lives until here.
    moveIntoPlace(draft, path);
}

/** Removes a draft that came to nothing, unless another process goes on with it. */
void discard(const FileDescriptor& file, const std::string& draft)
{
    const FileLock lock(file.get());
    if (leadsTo(draft, file.get())) {
        ::unlink(draft.c_str());
    }
}

/** What became of one try. */
enum class Result
{
    Made,
    Exists,
    Again
};

Result tryToCreate(const std::string& path, const std::string& key, const std::string& value)
{
    // One name for all: what a killed process leaves behind is used by the next.
    const std::string draft = path + ".new";
    const FileDescriptor file = openDraft(draft);
    const FileLock lock(file.get());
    if (!leadsTo(draft, file.get())) {
        return Result::Again;
    }
    try {
        if (exists(path)) {
            ::unlink(draft.c_str());
            return Result::Exists;
        }
        complete(file, draft, path, key, value);
    } catch (...) {
        discard(file, draft);
        throw;
    }
    return Result::Made;
}

} // namespace

bool createStore(const std::string& path, const std::string& key, const std::string& value)
{
    Result result = Result::Again;
    while (result == Result::Again) {
        result = exists(path) ? Result::Exists : tryToCreate(path, key, value);
    }
    return result == Result::Made;
}

} // namespace nxuconfig
