#include "NxuConfig.h"
#include "NxuHwVariant.h"

#include <gmock/gmock.h>

#include <set>

namespace
{

using os::bsp::hwVariants;
using os::bsp::NxuHwCode;
using os::bsp::NxuHwVariant;
using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr int Platform = 1;
constexpr int Nxu4 = 0;
constexpr int Nxu5 = 1;

// Made before main, as the static objects of other modules are.
const std::size_t variantsAtStart = hwVariants.size();
const std::string keyAtStart = os::bsp::key::FpgaVariant;

/** All values of one word of the hardware codes. */
std::set<int> valuesOf(int word)
{
    std::set<int> values;
    for (const NxuHwVariant& variant : hwVariants) {
        values.insert(variant.code.word[word]);
    }
    return values;
}

/** The products with boards of one platform kind. */
std::set<int> productsOn(int platform)
{
    std::set<int> products;
    for (const NxuHwVariant& variant : hwVariants) {
        if (variant.code.word[Platform] == platform) {
            products.insert(variant.productCode);
        }
    }
    return products;
}

TEST(HwVariants, HaveEnoughRows)
{
    EXPECT_GE(hwVariants.size(), 18U);
}

TEST(HwVariants, AreThereBeforeTheStaticObjectsOfOthers)
{
    EXPECT_EQ(variantsAtStart, hwVariants.size());
    EXPECT_EQ(keyAtStart, os::bsp::key::FpgaVariant);
}

TEST(HwVariants, HaveEveryProduct)
{
    std::set<int> products;
    for (const NxuHwVariant& variant : hwVariants) {
        products.insert(variant.productCode);
    }
    EXPECT_THAT(products, ElementsAre(1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 14));
}

TEST(HwVariants, HaveOnlyKnownRevisions)
{
    for (const NxuHwVariant& variant : hwVariants) {
        EXPECT_GE(variant.hwRevision, 0);
        EXPECT_LE(variant.hwRevision, 6);
    }
}

TEST(HwVariants, HaveEveryValueThatTheQueriesKnow)
{
    EXPECT_THAT(valuesOf(1), ElementsAre(0, 1));
    EXPECT_THAT(valuesOf(2), ElementsAre(0, 1, 2));
    EXPECT_THAT(valuesOf(3), ElementsAre(0, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(valuesOf(5), ElementsAre(0, 2, 4));
}

TEST(HwVariants, HaveProductsOfBothPlatforms)
{
    EXPECT_THAT(productsOn(Nxu4), IsSupersetOf({1}));
    EXPECT_GE(productsOn(Nxu4).size(), 3U);
    EXPECT_THAT(productsOn(Nxu5), IsSupersetOf({11}));
    for (const int product : productsOn(Nxu4)) {
        EXPECT_EQ(productsOn(Nxu5).count(product), 0U) << "product " << product;
    }
}

TEST(HwVariants, HaveCodesOfBytesNoTwoAlike)
{
    std::set<std::vector<int>> codes;
    for (const NxuHwVariant& variant : hwVariants) {
        const std::vector<int> code(std::begin(variant.code.word), std::end(variant.code.word));
        for (const int word : code) {
            EXPECT_GE(word, 0);
            EXPECT_LE(word, 255);
        }
        EXPECT_TRUE(codes.insert(code).second) << "product " << variant.productCode;
    }
}

TEST(HwVariants, MatchTheirOwnCodeAlone)
{
    for (const NxuHwVariant& variant : hwVariants) {
        for (const NxuHwVariant& other : hwVariants) {
            EXPECT_EQ(variant == other.code, &variant == &other);
        }
    }
}

TEST(HwVariants, MatchByAllEightWords)
{
    const NxuHwVariant& variant = hwVariants[3];
    for (int i = 0; i < 8; ++i) {
        NxuHwCode code = variant.code;
        code.word[i] += 256;
        EXPECT_FALSE(variant == code) << "word " << i;
    }
}

} // namespace
