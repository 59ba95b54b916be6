#include "SimulatorTest.h"

#include "NxuHwVariant.h"

#include <array>
#include <cstdio>
#include <map>

namespace
{

using os::bsp::hwVariants;
using os::bsp::NxuHwVariant;

class Variants : public SimulatorTest
{};

std::string lineOf(std::size_t index, const NxuHwVariant& variant)
{
    static const std::map<int, const char*> products{
        {1, "NXU4A"},    {2, "NXU2001"},  {3, "NXU2002"},  {4, "KT4851_1"}, {5, "KT4851_2"},
        {6, "KT4766"},   {7, "DWB2001"},  {9, "KT4851_3"}, {10, "DWB2002"}, {11, "KT4851_4"},
        {12, "NXU2003"}, {13, "NXU2004"}, {14, "DWB2003"},
    };
    constexpr std::array<const char*, 7> revisions{"R1_P2", "R1_P3", "R1_P4", "R1_P5",
                                                   "R2_P1", "R2_P2", "XPIC"};
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "%-5zu  %-8s  %-8s  ", index,
                  products.at(variant.productCode),
                  revisions.at(static_cast<std::size_t>(variant.hwRevision)));
    std::string line = text.data();
    for (const std::int32_t value : variant.code.word) {
        std::snprintf(text.data(), text.size(), "%02x", static_cast<unsigned int>(value));
        line += text.data();
    }
    return line + '\n';
}

TEST_F(Variants, AreListed)
{
    std::string expected = "index  product   revision  hardware code\n";
    for (std::size_t index = 0; index < hwVariants.size(); ++index) {
        expected += lineOf(index, hwVariants[index]);
    }
    EXPECT_EQ(run({"variants"}), testsupport::answer(expected));
}

} // namespace
