#ifndef PLATFORM_LINUX_CONFIG_STOREFILE_H
#define PLATFORM_LINUX_CONFIG_STOREFILE_H

#include "FileDescriptor.h"
#include "LmdbFile.h"

#include <memory>
#include <string>

namespace nxuconfig
{

/** Whether the path leads to the open file. @throws std::system_error when that cannot be told */
bool leadsTo(const std::string& path, int fd);

/**
 * The store's file, open in this process.
 *
 * Everything but opening is done under the FileLock of fd().
 */
class StoreFile
{
public:
    /**
     * Opens the store, for writing where possible.
     * @return null when there is none @throws std::system_error
     */
    static std::unique_ptr<StoreFile> open(const std::string& path, LmdbFile::Access needed);

    int fd() const { return m_file.get(); }
    bool isWritable() const { return m_access == LmdbFile::Access::ReadWrite; }
    /** The database in it, opened at the first call. @throws std::exception */
    LmdbFile& database();

private:
    StoreFile(FileDescriptor file, LmdbFile::Access access);
    void checkSize() const;

    const FileDescriptor m_file;
    const LmdbFile::Access m_access;
    std::unique_ptr<LmdbFile> m_database;
};

} // namespace nxuconfig

#endif
