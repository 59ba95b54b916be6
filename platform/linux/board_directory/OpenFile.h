#ifndef PLATFORM_LINUX_BOARD_DIRECTORY_OPENFILE_H
#define PLATFORM_LINUX_BOARD_DIRECTORY_OPENFILE_H

#include "FileDescriptor.h"

#include <string>

#include <fcntl.h>
#include <sys/types.h>

/**
 * Opens a file as openat does, on a descriptor that is none of the standard streams'.
 *
 * In a program that was started without some of these, the file would otherwise get what the
 * program prints. The programs that this one starts do not get the descriptor.
 *
 * @param directory  descriptor that a relative path starts from
 * @return not open, with errno set, when that fails
 */
syscalls::FileDescriptor openFileAt(int directory, const std::string& path, int flags,
                                    mode_t mode = 0);

/** openFileAt from the working directory. */
inline syscalls::FileDescriptor openFile(const std::string& path, int flags, mode_t mode = 0)
{
    return openFileAt(AT_FDCWD, path, flags, mode);
}

#endif
