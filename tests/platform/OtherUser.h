#ifndef TESTS_PLATFORM_OTHERUSER_H
#define TESTS_PLATFORM_OTHERUSER_H

#include "Program.h"

#include <string>

#include <fcntl.h>
#include <grp.h>
#include <sys/types.h>
#include <unistd.h>

namespace testsupport
{

/** A user whom root can become. */
constexpr uid_t OrdinaryUser = 65534;

/** Makes this process one of an ordinary user, or ends it. */
inline void becomeOrdinaryUser()
{
    if (::setgroups(0, nullptr) != 0 || ::setgid(OrdinaryUser) != 0 || ::setuid(OrdinaryUser) != 0)
    {
        ::_exit(126);
    }
}

/** Whether an ordinary user gets as far as that path. */
inline bool canBeReachedByOthers(const std::string& path)
{
    const pid_t process = ::fork();
    if (process == 0) {
        becomeOrdinaryUser();
        ::_exit(::faccessat(AT_FDCWD, path.c_str(), X_OK, 0) == 0 ? 0 : 1);
    }
    return waitFor(process) == 0;
}

} // namespace testsupport

#endif
