#include "Bsp.h"

#include <cstring>

namespace os::bsp
{

namespace
{

struct FpgaImage
{
    const char* key;
    const char* path;
};

constexpr FpgaImage fpgaImages[] = {
    {"linnet", "fwq402817_12/R9AC/fwq402817_12.bin"},
    {"mallard", "fwq402817_13/R9AC/fwq402817_13.bin"},
    {"fulmar", "fwq402817_2/R9AC/fwq402817_2.bin"},
    {"gannet", "fwq402817_6/R9AC/fwq402817_6.bin"},
    {"puffin", "fwq402817_9/R7F01/fwq402817_9.bin"},
    {"nightjar", "fwq402936_1/R9J/fwq402936_1.bin"},
    {"osprey", "fwq402936_2/R9K/fwq402936_2.bin"},
    {"osprey2", "fwq402936_3/R9K/fwq402936_3.bin"},
    {"quail", "fwq402936_11/R9J/fwq402936_11.bin"},
    {"redwing", "fwq402936_16/R1AG/fwq402936_16.bin"},
    {"siskin", "fwq402936_17/R1AG/fwq402936_17.bin"},
    {"pci", "fwqd550263_3/R1B01/fwqd550263_3.bin"},
};

} // namespace

const char* getFpgaPath(const char* name)
{
    for (const FpgaImage& image : fpgaImages) {
        if (std::strcmp(image.key, name) == 0) {
            return image.path;
        }
    }
    return nullptr;
}

} // namespace os::bsp
