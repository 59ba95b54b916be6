/**
 * @file
 * @brief The steps from a compressed kernel image to the kernel's R-state.
 *
 * Each traces under its own name.
 */
#ifndef BSP_SRC_FIRMWARE_KERNELIMAGE_H
#define BSP_SRC_FIRMWARE_KERNELIMAGE_H

#include <cstdio>

#include <sys/types.h>

namespace os::bsp
{

/** Room that an R-state needs, its NUL included. */
constexpr unsigned int KernelRStateSize = 8;

/** Offset of the gzip stream in the image, whose descriptor stands at its beginning; or -1. */
off_t Bsp_findArchive(int fd);

/**
 * Inflates the gzip stream at which the image's descriptor stands into the file.
 * @return 0 when the whole stream was inflated and checked, else -1
 */
int Bsp_inflateArchive(int fd, std::FILE* file);

/**
 * Finds the kernel's banner in the inflated image and copies the R-state from it, when it has one.
 *
 * @param file    the inflated image
 * @param rstate  room for KernelRStateSize bytes
 * @return 0 when there is a banner, with or without an R-state, else -1
 */
int Bsp_findLinuxVersion(std::FILE* file, char* rstate);

} // namespace os::bsp

#endif
