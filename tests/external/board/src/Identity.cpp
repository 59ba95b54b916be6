// EEPROM, hardware variants and settings of the sample board.

#include "NxuConfig.h"
#include "NxuHwVariant.h"
#include "SampleEeprom.h"

#include <algorithm>
#include <array>
#include <cstdio>

#ifndef SAMPLE_BOARD
#error "the board's own header was not found first"
#endif

bool sample_eeprom(unsigned int offset, uint8_t* to, unsigned int size)
{
    constexpr std::array<uint8_t, 8> code{0, 1, 2, 0, 0, 2, 0, 7};
    // Reading it takes long on this board.
    static bool wasRead = false;
    if (wasRead) {
        std::fputs("the EEPROM is read again\n", stderr);
    }
    wasRead = true;
    if (offset + size > code.size()) {
        return false;
    }
    std::copy_n(code.begin() + offset, size, to);
    return true;
}

namespace os
{
namespace bsp
{

namespace
{

/** Fifteen variants; the one in the middle is this board: revision 3, product code 9. */
std::vector<NxuHwVariant> makeVariants()
{
    std::vector<NxuHwVariant> variants;
    for (int row = 0; row < 15; ++row) {
        variants.push_back({row - 4, 0, row == 7 ? 9 : 1, {{0, 1, 2, 0, 0, 2, 0, row}}});
    }
    return variants;
}

} // namespace

const std::vector<NxuHwVariant> hwVariants = makeVariants();

bool operator==(const NxuHwVariant& variant, const NxuHwCode& code)
{
    return std::equal(std::begin(code.word), std::end(code.word), std::begin(variant.code.word));
}

namespace key
{
const std::string FpgaVariant = "sample/fpga";
const std::string RadiolinkMode = "sample/mode";
} // namespace key

namespace value
{
const std::string Empty;
namespace fpgaVariant
{
const std::string TwoTdm = "two";
const std::string OneTdmRleEqpNoMlhc = "one";
} // namespace fpgaVariant
namespace radiolinkMode
{
const std::string Rl4 = "four";
const std::string Rl5 = "five";
} // namespace radiolinkMode
} // namespace value

NxuConfig::NxuConfig() = default;
NxuConfig::~NxuConfig() = default;

std::string NxuConfig::get(const std::string& key) const
{
    return key == key::RadiolinkMode ? value::radiolinkMode::Rl5 : value::Empty;
}

bool NxuConfig::set(const std::string&, const std::string&)
{
    return false;
}

bool NxuConfig::clear(const std::string&)
{
    return false;
}

} // namespace bsp
} // namespace os
