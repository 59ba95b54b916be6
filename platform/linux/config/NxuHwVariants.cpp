#include "NxuHwVariant.h"

#include <algorithm>
#include <iterator>

namespace os::bsp
{

namespace
{

/** Revisions, with the values of the layer's HwRevision. */
enum Revision : int32_t
{
    R1_P2,
    R1_P3,
    R1_P4,
    R1_P5,
    R2_P1,
    R2_P2,
    Xpic
};

} // namespace

// Hardware code: model, platform (0 Nxu4, 1 Nxu5), control backplane (0 PCI, 1 PCIe, 2 Ethernet),
// traffic FPGA, front panel, DSP (0 BCM85650, 2 BCM85655, 4 BCM85651), revision, assembly.
// Programs ask for variants while their static objects are made, so the table is made before.
[[gnu::init_priority(101)]] const std::vector<NxuHwVariant> hwVariants = {
    {R1_P2, 0, 1, {{0x41, 0, 0, 0, 1, 0, 1, 0}}},  // NXU4A
    {R1_P3, 0, 1, {{0x41, 0, 0, 0, 1, 0, 2, 0}}},  // NXU4A
    {R2_P1, 0, 1, {{0x41, 0, 1, 3, 1, 2, 5, 0}}},  // NXU4A
    {R1_P2, 0, 2, {{0x21, 0, 0, 4, 1, 0, 1, 0}}},  // NXU2001
    {R1_P4, 0, 2, {{0x21, 0, 1, 4, 1, 2, 3, 0}}},  // NXU2001
    {R1_P2, 0, 3, {{0x22, 0, 0, 0, 2, 0, 1, 0}}},  // NXU2002
    {R1_P5, 0, 3, {{0x22, 0, 1, 5, 2, 2, 4, 0}}},  // NXU2002
    {R1_P2, 0, 4, {{0x51, 1, 1, 3, 1, 2, 1, 0}}},  // KT4851_1
    {R2_P2, 0, 4, {{0x51, 1, 2, 6, 1, 4, 6, 0}}},  // KT4851_1
    {R1_P2, 0, 5, {{0x52, 1, 1, 5, 2, 2, 1, 0}}},  // KT4851_2
    {Xpic, 0, 5, {{0x52, 1, 2, 6, 2, 4, 7, 1}}},   // KT4851_2
    {R1_P2, 0, 6, {{0x66, 1, 1, 6, 2, 2, 1, 0}}},  // KT4766
    {R1_P2, 0, 7, {{0xD1, 0, 0, 4, 1, 0, 1, 2}}},  // DWB2001
    {R2_P1, 0, 7, {{0xD1, 0, 1, 7, 1, 2, 5, 2}}},  // DWB2001
    {R1_P2, 0, 9, {{0x53, 1, 2, 7, 1, 4, 1, 0}}},  // KT4851_3
    {R1_P2, 0, 10, {{0xD2, 0, 0, 5, 2, 0, 1, 2}}}, // DWB2002
    {R1_P2, 0, 11, {{0x54, 1, 2, 8, 2, 4, 1, 0}}}, // KT4851_4
    {R1_P3, 0, 11, {{0x54, 1, 2, 8, 2, 4, 2, 0}}}, // KT4851_4
    {R1_P2, 0, 12, {{0x23, 0, 1, 7, 1, 2, 1, 0}}}, // NXU2003
    {R1_P2, 0, 13, {{0x24, 0, 1, 8, 2, 2, 1, 0}}}, // NXU2004
    {R1_P2, 0, 14, {{0xD3, 1, 2, 7, 1, 4, 1, 2}}}, // DWB2003
};

bool operator==(const NxuHwVariant& variant, const NxuHwCode& code)
{
    return std::equal(std::begin(variant.code.word), std::end(variant.code.word),
                      std::begin(code.word));
}

} // namespace os::bsp
