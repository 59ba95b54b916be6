// EEPROM, hardware variants and settings of the sample board.

#include "BaseBoard.h"
#include "NxuConfig.h"
#include "NxuHwVariant.h"

#include <algorithm>
#include <array>

#ifndef SAMPLE_BOARD
#error "the board's own header was not found first"
#endif

int e2prom_data_read(int device, int area, uint8_t* buffer)
{
    constexpr std::array<uint8_t, 8> code{0, 1, 2, 0, 0, 2, 0, 7};
    if (device != 5 || area != 1) {
        return -1;
    }
    std::copy(code.begin(), code.end(), buffer);
    return 0;
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
