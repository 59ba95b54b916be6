/**
 * @file
 * @brief The kernel that the tests' images hold, and what the query says of them.
 */
#ifndef TESTS_FIRMWARE_KERNELMESSAGES_H
#define TESTS_FIRMWARE_KERNELMESSAGES_H

#include "HvxTrace.h"

#include <string>

namespace firmware
{

/** Messages up to this level say how a call went. */
constexpr HvxTraceLevel Course = 5;

inline const std::string kernel = "Linux version 2.6.34.R1A01 (builder)";

/** What somebody puts under the temporary file's name in the hope that it is taken for a kernel. */
inline const std::string planted = "Linux version 6.6.6.R6E6";

inline const std::string inflated =
    "bsp.core 5 Bsp_getKernelRState(): Bsp_inflateArchive() successful";
inline const std::string noTemporaryFile =
    "bsp.core 1 Bsp_getKernelRState(): Could not open tmp file: /dev/shm/zImage_tmp";

inline std::string headerAt(std::size_t position)
{
    return "bsp.core 5 Bsp_findArchive(): ZLIB header found at pos " + std::to_string(position);
}

inline const std::string headerAt1000 = headerAt(1000);

} // namespace firmware

#endif
