#ifndef TESTS_FIRMWARE_OPENDESCRIPTORS_H
#define TESTS_FIRMWARE_OPENDESCRIPTORS_H

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace firmware
{

/** How many descriptors this process has open. */
inline std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

} // namespace firmware

#endif
