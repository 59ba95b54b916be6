#ifndef TOOLS_COMMON_STANDARDSTREAMS_H
#define TOOLS_COMMON_STANDARDSTREAMS_H

#include <fcntl.h>
#include <unistd.h>

namespace tools
{

/**
 * Puts /dev/null on those of descriptors 0 to 2 that the program was started without, so that what
 * is written to a standard stream never goes into a file that the program opens.
 *
 * The first thing that main does, before anything else is opened.
 */
inline void openMissingStandardStreams()
{
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        // Those below are open, so that the lowest free descriptor is this one.
        if (::fcntl(fd, F_GETFD) == -1 && ::open("/dev/null", O_RDWR) != fd) {
            return;
        }
    }
}

} // namespace tools

#endif
