#ifndef PLATFORM_LINUX_SETTINGS_WRITERLOCK_H
#define PLATFORM_LINUX_SETTINGS_WRITERLOCK_H

#include "Deadline.h"
#include "FileDescriptor.h"

#include <optional>
#include <string>

#include <sys/stat.h>

namespace settings
{

/**
 * Lock of this process on a file of a directory, against other processes that want to replace it.
 *
 * It is on a second file, there while someone writes, which only those may open who may write the
 * first: nobody else can take the lock. It ends with its process, however that ends, and a forked
 * process has no part in it; what a killed process leaves of it is used by the next.
 */
class WriterLock
{
public:
    /**
     * @param directory  descriptor of the directory, which must stay open
     * @param name       name of the file that is to be replaced
     * @param status     its owner and mode, if it exists
     * @throws std::exception when that fails, or when others do not end in time
     */
    WriterLock(int directory, const std::string& name, const std::optional<struct stat>& status,
               const Deadline& deadline);
    ~WriterLock();
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

private:
    bool tryToLock(const std::optional<struct stat>& status);
    syscalls::FileDescriptor open() const;
    syscalls::FileDescriptor make(const std::optional<struct stat>& status) const;
    syscalls::FileDescriptor makeWhole(const std::optional<struct stat>& status) const;
    bool leadsTo(const syscalls::FileDescriptor& file) const;

    const int m_directory;
    const std::string m_name;
    syscalls::FileDescriptor m_file;
};

} // namespace settings

#endif
