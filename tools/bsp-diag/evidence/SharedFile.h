#ifndef TOOLS_DIAG_EVIDENCE_SHAREDFILE_H
#define TOOLS_DIAG_EVIDENCE_SHAREDFILE_H

#include "FileDescriptor.h"
#include "evidence/ProcessTable.h"

#include <optional>
#include <string>

#include <sys/stat.h>

/** What file an open one is, and the path by which the kernel lists mappings of it. */
struct ListedFile
{
    FileIdentity identity;
    std::string path;
};

/** As the kernel lists mappings, unless the file system has numbers of its own. */
FileIdentity identityOf(const struct stat& status);
/** The same of a path; of nothing that is there when it cannot be looked at. */
FileIdentity identityOf(const std::string& path);

/** Nothing when it cannot be mapped for reading. */
std::optional<ListedFile> listedFile(const syscalls::FileDescriptor& file, std::size_t size);

/** The first bytes of an open file, fewer where it is shorter; no mapping that can become short. */
std::string bytesOf(const syscalls::FileDescriptor& file, std::size_t size);

/** A file that programs share, looked at without changing, waiting for or following anything. */
class SharedFile
{
public:
    /** Nothing when there is no such name. */
    static std::optional<SharedFile> look(const std::string& path);

    const std::string& path() const { return m_path; }
    const struct stat& status() const { return m_status; }
    bool isRegular() const { return S_ISREG(m_status.st_mode); }
    /** What it is that is no regular file, as in "a directory". */
    std::string kind() const;
    bool isReadable() const { return m_file.isOpen(); }
    std::size_t size() const { return static_cast<std::size_t>(m_status.st_size); }
    /** Empty where it is not readable. */
    std::string bytes(std::size_t size) const;
    const FileIdentity& identity() const { return m_listed.identity; }
    /** The directory by which the kernel lists mappings of it. */
    std::string listedDirectory() const;
    /** As in "/dev/shm/DtcmSync, of user 0, last changed 2026-11-21 17:40:02 UTC". */
    std::string text() const;

private:
    std::string m_path;
    struct stat m_status
    {};
    syscalls::FileDescriptor m_file;
    ListedFile m_listed;
};

#endif
