#ifndef TESTS_SUPPORT_NODES_H
#define TESTS_SUPPORT_NODES_H

#include "FileDescriptor.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace testsupport
{

inline void makeLink(const std::string& target, const std::string& path)
{
    if (::symlink(target.c_str(), path.c_str()) != 0) {
        throw std::runtime_error("cannot make the link " + path);
    }
}

/** Makes a pipe or a socket, as the type says. */
inline void makeNode(mode_t type, const std::string& path)
{
    if (::mknod(path.c_str(), type | 0600, 0) != 0) {
        throw std::runtime_error("cannot make the node " + path);
    }
}

/** A terminal where nobody types. */
class Terminal
{
public:
    Terminal() : m_user(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (::grantpt(m_user.get()) == 0 && ::unlockpt(m_user.get()) == 0) {
            m_path = ::ptsname(m_user.get()); // NOLINT(concurrency-mt-unsafe)
        }
    }

    /** What the user types and sees. */
    const syscalls::FileDescriptor& user() const { return m_user; }
    /** Its device; empty when the machine has none. */
    const std::string& path() const { return m_path; }

private:
    const syscalls::FileDescriptor m_user;
    std::string m_path;
};

} // namespace testsupport

#endif
