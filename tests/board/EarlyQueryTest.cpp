/**
 * @file
 * @brief Questions that are asked while static objects are made.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

namespace
{

struct Answers
{
    int revision;
    int product;
    int trafFpga;
    int platform;
    unsigned int channels;
    int radiolinkMode;
    std::string boardIdText;
};

const Answers early = [] {
    // The trace channel does not exist yet, so the failure is not reported.
    fakeboard::eeprom().result = 1;
    fakeboard::variant(14).productCode = 11;
    fakeboard::variant(14).code = {{0, 1, 2, 8, 0, 4, 0, 0}};
    fakeboard::store().values = {{os::bsp::key::FpgaVariant, os::bsp::value::fpgaVariant::TwoTdm},
                                 {os::bsp::key::RadiolinkMode, os::bsp::value::radiolinkMode::Rl5}};
    return Answers{os::bsp::getHwRevision(), Bsp_getProductId(),        Bsp_getTrafFpgaType(),
                   Bsp_getPlatformType(),    Bsp_getNumberOfChannels(), Bsp_getRadiolinkMode(),
                   Bsp_getBoardIdText()};
}();

TEST(EarlyQuery, IsAnsweredLikeAnyOther)
{
    EXPECT_EQ(early.revision, 24);
    EXPECT_EQ(early.product, 14);
    EXPECT_EQ(early.trafFpga, 20);
    EXPECT_EQ(early.platform, 2);
    EXPECT_EQ(early.channels, 2U);
    EXPECT_EQ(early.radiolinkMode, 1);
    EXPECT_EQ(early.boardIdText, "Unknown board revision");
    EXPECT_EQ(fakeboard::eeprom().reads, 1);
}

TEST(EarlyQuery, IsAnsweredTheSameLater)
{
    fakeboard::eeprom().result = 0;
    EXPECT_EQ(os::bsp::getHwRevision(), 24);
    EXPECT_EQ(fakeboard::eeprom().reads, 1);
}

} // namespace
