/**
 * @file
 * @brief A program where every user can start it.
 */
#ifndef TESTS_SUPPORT_SHAREDCOPY_H
#define TESTS_SUPPORT_SHAREDCOPY_H

#include "TemporaryDirectory.h"

namespace testsupport
{

/** A copy of a program that other users can start, though the build may lie in a private folder. */
class SharedCopy
{
public:
    explicit SharedCopy(const std::filesystem::path& program)
        : m_directory("/tmp"), m_path(m_directory.path() / program.filename())
    {
        constexpr auto ForAll = std::filesystem::perms(0755);
        std::filesystem::copy_file(program, m_path);
        std::filesystem::permissions(m_path, ForAll);
        std::filesystem::permissions(m_directory.path(), ForAll);
    }

    /** Path of the copy. */
    std::string path() const { return m_path.string(); }

private:
    TemporaryDirectory m_directory;
    std::filesystem::path m_path;
};

} // namespace testsupport

#endif
