#ifndef TOOLS_COMMON_DEVICEMEMORY_H
#define TOOLS_COMMON_DEVICEMEMORY_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/** The bytes of mapped memory, copied by words: registers are whole words. */
inline std::string bytesOfDevice(const void* memory, std::size_t size)
{
    std::string bytes(size, '\0');
    const auto* words = static_cast<const volatile std::uint32_t*>(memory);
    for (std::size_t offset = 0; offset + sizeof *words <= size; offset += sizeof *words) {
        const std::uint32_t word = words[offset / sizeof *words];
        std::copy_n(reinterpret_cast<const char*>(&word), sizeof word, bytes.data() + offset);
    }
    return bytes;
}

#endif
