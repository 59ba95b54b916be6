#ifndef BSP_SRC_BSPREADHELPER_H
#define BSP_SRC_BSPREADHELPER_H

#include <cstddef>

#include <sys/types.h>

namespace os
{
namespace bsp
{

/**
 * Reads until the buffer is full or the file ends, however often a signal interrupts.
 *
 * At least one read is made, even for a size of 0, so that what cannot be read is always noticed.
 *
 * @return the number of bytes read, less than @p size only at the end of the file; -1 with errno
 *         set on an error, whatever was read before
 */
ssize_t Bsp_readHelper(int fd, void* buffer, std::size_t size);

} // namespace bsp
} // namespace os

#endif
