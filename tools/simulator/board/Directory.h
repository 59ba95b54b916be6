#ifndef TOOLS_SIMULATOR_BOARD_DIRECTORY_H
#define TOOLS_SIMULATOR_BOARD_DIRECTORY_H

#include "FileDescriptor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

/**
 * An open directory, and what is done with its entries.
 *
 * Entries are found from the open directory and symbolic links are not followed, so that nobody who
 * moves or replaces something on the way leads this program elsewhere. All functions throw Failure
 * where they do not say otherwise.
 */
class Directory
{
public:
    /** Opens a directory, which is no symbolic link; the error's number is in errno if that fails.
     */
    static std::optional<Directory> open(const std::filesystem::path& path);

    /** @param name  what messages call it */
    Directory(syscalls::FileDescriptor descriptor, std::filesystem::path name)
        : m_descriptor(std::move(descriptor)), m_name(std::move(name))
    {}

    int fd() const { return m_descriptor.get(); }
    const std::filesystem::path& name() const { return m_name; }
    std::filesystem::path nameOf(const std::string& entry) const { return m_name / entry; }

    /** What an entry is; nothing when there is none. */
    std::optional<struct stat> status(const std::string& entry) const;

    /** Opens an entry, following no link; the error's number is in errno if that fails. */
    syscalls::FileDescriptor openEntry(const std::string& entry, int flags) const;

    /** A directory in this one; nothing when there is none. */
    std::optional<Directory> find(const std::string& entry) const;

    /** Makes a directory with these permissions, less the umask, and opens it. */
    Directory make(const std::string& entry, mode_t mode = 0777) const;

    /** Makes a directory as /tmp is: everyone's, each file its owner's. */
    Directory makeShared(const std::string& entry) const;

    /** Makes a file that does not exist yet. */
    void createFile(const std::string& entry, const std::string& contents) const;

private:
    syscalls::FileDescriptor m_descriptor;
    std::filesystem::path m_name;
};

/** The names of a directory's entries. @throws Failure */
std::vector<std::string> namesIn(const Directory& directory);

/**
 * Removes what is in a directory, not the directory.
 *
 * What others remove meanwhile is not missed, what they add may stay.
 * @throws Failure
 */
void removeContents(const Directory& directory);

#endif
