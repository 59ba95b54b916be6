#include "Bsp.h"
#include "FakeBoard.h"
#include "Messages.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <numeric>

namespace
{

using namespace fakeboard;
using os::bsp::getHwRevision;
using os::bsp::getProductId;
using os::bsp::NxuHwCode;
using os::bsp::ProductId;
using recordingtrace::takeLines;
using namespace testing;

const NxuHwCode SomeCode{{1, 2, 3, 4, 5, 6, 7, 8}};

/** Row of the variant that the layer selected. */
std::ptrdiff_t selectedRow()
{
    return Bsp_getNxuHwVariant() - &variant(0);
}

TEST(HwCode, IsReadFromTheBaseBoardsHardwareCodeArea)
{
    getHwRevision();
    EXPECT_EQ(eeprom().device, 5);
    EXPECT_EQ(eeprom().area, 1);
}

TEST(HwCode, SelectsTheVariantOfThatCode)
{
    variant(3).code = SomeCode;
    fakeboard::setCode(SomeCode);
    EXPECT_EQ(getHwRevision(), 13);
    EXPECT_EQ(selectedRow(), 3);
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST(HwCode, HasUnsignedBytes)
{
    variant(3).code = {{255, 128, 127, 0, 255, 200, 129, 254}};
    fakeboard::setCode(variant(3).code);
    EXPECT_EQ(selectedRow(), 3);
}

TEST(HwCode, SelectsTheFirstVariantOfThatCode)
{
    variant(7).code = SomeCode;
    variant(3).code = SomeCode;
    fakeboard::setCode(SomeCode);
    EXPECT_EQ(selectedRow(), 3);
}

TEST(HwCode, IsSearchedForFromTheFirstVariantToTheLast)
{
    std::vector<std::ptrdiff_t> asked;
    fakeboard::setEquality([&asked](const os::bsp::NxuHwVariant& row, const NxuHwCode& /*code*/) {
        asked.push_back(&row - &variant(0));
        return asked.size() == fakeboard::NumberOfVariants;
    });
    EXPECT_EQ(selectedRow(), 19);
    std::vector<std::ptrdiff_t> all(fakeboard::NumberOfVariants);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(asked, all);
}

TEST(HwCode, IsComparedByThePlatform)
{
    fakeboard::setCode(SomeCode);
    fakeboard::setEquality([](const os::bsp::NxuHwVariant& row, const NxuHwCode& code) {
        return row.hwRevision == 16 && code.word[0] == 1 && code.word[7] == 8;
    });
    EXPECT_EQ(getHwRevision(), 16);
}

TEST(HwCode, IsTheDefaultVariantsWhenItCannotBeRead)
{
    eeprom().result = 5;
    EXPECT_EQ(getHwRevision(), 24);
    EXPECT_EQ(selectedRow(), 14);
    EXPECT_THAT(takeLines(), ElementsAre(readFailed(5)));
}

TEST(HwCode, CannotBeReadWhenTheResultIsNegative)
{
    eeprom().result = -5;
    EXPECT_EQ(selectedRow(), 14);
    EXPECT_THAT(takeLines(), ElementsAre(readFailed(-5)));
}

TEST(HwCode, IsNotSpoiledByAReadThatFailsHalfway)
{
    variant(3).code = SomeCode;
    fakeboard::setCode(SomeCode);
    eeprom().result = 1;
    EXPECT_EQ(selectedRow(), 14);
    EXPECT_THAT(takeLines(), ElementsAre(readFailed(1)));
}

TEST(HwCode, OfTheDefaultVariantIsSearchedForLikeAnyOther)
{
    variant(3).code = variant(14).code;
    eeprom().result = 1;
    EXPECT_EQ(selectedRow(), 3);
    EXPECT_THAT(takeLines(), ElementsAre(readFailed(1)));
}

TEST(HwCode, OfNoVariantSelectsTheFirstNotTheDefault)
{
    fakeboard::setCode(SomeCode);
    EXPECT_EQ(getHwRevision(), 10);
    EXPECT_EQ(selectedRow(), 0);
    EXPECT_THAT(takeLines(), ElementsAre(invalidVariant));
}

TEST(HwCode, OfNoVariantIsReportedOnce)
{
    fakeboard::setCode(SomeCode);
    variant(0).productCode = 1;
    getHwRevision();
    getProductId();
    Bsp_getNxuHwVariant();
    os::bsp::getBoardIdText();
    EXPECT_THAT(takeLines(), ElementsAre(invalidVariant));
}

TEST(HwCode, IsReadAndSearchedForOnceEvenWhenBothFail)
{
    eeprom().result = 7;
    fakeboard::setEquality([](const auto& /*row*/, const auto& /*code*/) { return false; });
    getHwRevision();
    getHwRevision();
    os::bsp::getPlatformType();
    EXPECT_EQ(eeprom().reads, 1);
    // The platform's own message quotes variant 0.
    EXPECT_THAT(takeLines(),
                ElementsAre(readFailed(7), invalidVariant,
                            "bsp.core 1 getPlatformType(): Unknown platformType: 100"));
}

TEST(HwCode, DoesNotFollowTheEeprom)
{
    getHwRevision();
    fakeboard::setCode(SomeCode);
    variant(5).code = SomeCode;
    EXPECT_EQ(selectedRow(), 1);
    EXPECT_EQ(eeprom().reads, 1);
}

TEST(HwRevision, IsTheVariantsAsItStandsThere)
{
    variant(1).hwRevision = -7;
    EXPECT_EQ(getHwRevision(), -7);
    EXPECT_EQ(Bsp_getHwRevision(), -7);
}

struct Product
{
    int code;
    int id;
};

void PrintTo(const Product& product, std::ostream* stream)
{
    *stream << product.code << " is " << product.id;
}

class KnownProduct : public TestWithParam<Product>
{};

TEST_P(KnownProduct, IsFoundByItsCode)
{
    variant(1).productCode = GetParam().code;
    EXPECT_EQ(static_cast<int>(getProductId()), GetParam().id);
    EXPECT_EQ(Bsp_getProductId(), GetParam().id);
    EXPECT_THAT(takeLines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Products, KnownProduct,
                         Values(Product{1, 5}, Product{2, 6}, Product{3, 7}, Product{4, 10},
                                Product{5, 11}, Product{6, 13}, Product{7, 8}, Product{9, 12},
                                Product{10, 9}, Product{11, 14}, Product{12, 15}, Product{13, 16},
                                Product{14, 17}));

class UnknownProduct : public TestWithParam<int>
{};

TEST_P(UnknownProduct, IsReportedAtEveryCall)
{
    variant(1).productCode = GetParam();
    const std::string message =
        "bsp.core 1 getProductId(): Unknown product ID: " + std::to_string(GetParam());
    EXPECT_EQ(getProductId(), ProductId::EndOfList);
    EXPECT_EQ(Bsp_getProductId(), 18);
    EXPECT_THAT(takeLines(), ElementsAre(message, message));
}

INSTANTIATE_TEST_SUITE_P(Codes, UnknownProduct, Values(0, 8, 15, -1, 18, 256));

} // namespace
