/**
 * @file
 * @brief Makes kernel images, whole or broken, with zlib.
 */
#ifndef TESTS_FIRMWARE_FIRMWAREIMAGES_H
#define TESTS_FIRMWARE_FIRMWAREIMAGES_H

#include <string>

namespace firmware
{

/** The gzip stream of some data; level 0 stores it uncompressed. */
std::string gzip(const std::string& data, int level = 6);

/** A kernel image as its build makes it: some code, the gzip stream, some more bytes. */
std::string kernelImage(const std::string& inflated);

/** Bytes in which no banner and no header is, the same ones for the same seed; they do not
 * compress. */
std::string noise(std::size_t size, unsigned int seed = 1);

inline const std::string nul(1, '\0');

} // namespace firmware

#endif
