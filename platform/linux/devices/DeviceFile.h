#ifndef PLATFORM_LINUX_DEVICES_DEVICEFILE_H
#define PLATFORM_LINUX_DEVICES_DEVICEFILE_H

#include "FileDescriptor.h"

#include <string>

namespace DDevIo
{

/** An entry of the board directory, opened as a device. */
struct DeviceFile
{
    syscalls::FileDescriptor descriptor; /**< Not open when the entry cannot be a device. */
    bool isRegular = false;              /**< A file; else a node of a device. */
};

/**
 * Opens an entry, without waiting: a file, or a character device that is no terminal.
 *
 * @param name    name of the entry
 * @param access  O_RDONLY or O_RDWR
 * @return what was opened; where nothing was, errno says why
 */
DeviceFile openDevice(const std::string& name, int access);

} // namespace DDevIo

#endif
