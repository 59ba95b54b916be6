/**
 * @file
 * @brief What all readers of image files need: the descriptor, reading, the name in messages.
 */
#ifndef BSP_SRC_FIRMWARE_IMAGEFILE_H
#define BSP_SRC_FIRMWARE_IMAGEFILE_H

#include "FileDescriptor.h"

#include <cstddef>

#include <sys/types.h>

namespace os::bsp
{

/** The text, or a stand-in for a caller's null pointer, which no stream takes. */
inline const char* printable(const char* text)
{
    return text == nullptr ? "(null)" : text;
}

/** syscalls::readFully, each step of which is traced. */
ssize_t Bsp_readHelper(int fd, void* buffer, std::size_t size);

} // namespace os::bsp

#endif
