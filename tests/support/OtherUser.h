/**
 * @file
 * @brief What root needs to be another user in a test, or to start programs as one.
 */
#ifndef TESTS_SUPPORT_OTHERUSER_H
#define TESTS_SUPPORT_OTHERUSER_H

#include "Files.h"
#include "Program.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/statvfs.h>
#include <sys/types.h>
#include <unistd.h>

namespace testsupport
{

/** A user whom root can become. */
constexpr uid_t OrdinaryUser = 65534;

/** Makes this process one of that user's. */
inline bool become(uid_t user)
{
    return ::setgroups(0, nullptr) == 0 && ::setresgid(user, user, user) == 0 &&
           ::setresuid(user, user, user) == 0;
}

/** Makes this process one of an ordinary user, or ends it. */
inline void becomeOrdinaryUser()
{
    if (!become(OrdinaryUser)) {
        ::_exit(126);
    }
}

/** Whether an ordinary user gets as far as that path. */
inline bool canBeReachedByOthers(const std::string& path)
{
    return holdsInCopy([&path] {
        becomeOrdinaryUser();
        return ::faccessat(AT_FDCWD, path.c_str(), X_OK, 0) == 0;
    });
}

/** Whether programs in that directory get the rights that their files' modes give. */
inline bool programsGetRightsIn(const std::string& directory)
{
    struct statvfs disk = {};
    return ::statvfs(directory.c_str(), &disk) == 0 && (disk.f_flag & ST_NOSUID) == 0 &&
           ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) != 1;
}

/** Whether an ordinary user gets as far as the libraries of the emulator, if there is one. */
inline bool canEmulatorBeUsedByOthers()
{
    const std::string libraries = "LD_LIBRARY_PATH=";
    for (const std::string& word : emulator()) {
        if (word.rfind(libraries, 0) == 0) {
            return canBeReachedByOthers(
                word.substr(libraries.size(), word.find(':') - libraries.size()));
        }
    }
    return true;
}

constexpr const char* NoEmulatorForOthers =
    "the emulator's libraries are in a folder that others cannot enter";

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
