#ifndef PLATFORM_LINUX_SETTINGS_REPLACEDFILE_H
#define PLATFORM_LINUX_SETTINGS_REPLACEDFILE_H

#include "FileDescriptor.h"

#include <optional>
#include <string>

#include <sys/stat.h>

namespace settings
{

/** A file that is replaced as a whole, and its directory, which is held open. */
class ReplacedFile
{
public:
    /** What it is before. */
    struct Former
    {
        struct stat status;
        std::string bytes;
    };

    /** @throws std::system_error when there is no such directory, or it may not be read */
    explicit ReplacedFile(const std::string& path);

    int directory() const { return m_directory.get(); }
    const std::string& name() const { return m_name; }

    /**
     * What is there now, if anything.
     * @throws std::exception when it is not to be replaced: it may not be written, is no file, too
     *         large or ends before its size
     */
    std::optional<Former> former() const;

    /**
     * Puts a new file in its place, with the owner, as far as the user may do so, and the mode of
     * the former one; durable on return.
     * @throws std::exception with nothing changed
     */
    void replace(const std::optional<Former>& former, const std::string& bytes) const;

private:
    void writeNew(const std::optional<Former>& former, const std::string& bytes) const;
    void moveIntoPlace(const std::optional<Former>& former, const std::string& bytes) const;
    void undo(const std::optional<Former>& former) const;

    const std::string m_name;
    const std::string m_temporary;
    const syscalls::FileDescriptor m_directory;
};

} // namespace settings

#endif
