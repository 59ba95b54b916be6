/**
 * @file
 * @brief Questions that are asked while static objects are made.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "Led.h"
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
    std::string fpgaPath;
    std::string ledName;
    unsigned int ledState;
    std::string resetType;
    std::string productName;
    std::string dspName;
};

const Answers early = [] {
    // The trace channel does not exist yet, so the failure is not reported.
    fakeboard::eeprom().result = 1;
    fakeboard::variant(14).productCode = 11;
    fakeboard::variant(14).code = {{0, 1, 2, 8, 0, 4, 0, 0}};
    fakeboard::store().values = {{os::bsp::key::FpgaVariant, os::bsp::value::fpgaVariant::TwoTdm},
                                 {os::bsp::key::RadiolinkMode, os::bsp::value::radiolinkMode::Rl5}};
    return Answers{os::bsp::getHwRevision(),
                   Bsp_getProductId(),
                   Bsp_getTrafFpgaType(),
                   Bsp_getPlatformType(),
                   Bsp_getNumberOfChannels(),
                   Bsp_getRadiolinkMode(),
                   Bsp_getBoardIdText(),
                   Bsp_getFpgaPath("osprey2"),
                   Led_objectToName(1),
                   Led_stateNameToStateObject("fast"),
                   os::bsp::resetTypeToString(os::bsp::ResetType::Watchdog),
                   os::bsp::nameOf(os::bsp::productIdNames, os::bsp::ProductId::KT4851_4),
                   os::bsp::nameOf(os::bsp::dspTypeNames, -1)};
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

TEST(EarlyQuery, FindsTheLayersTables)
{
    EXPECT_EQ(early.fpgaPath, "fwq402936_3/R9K/fwq402936_3.bin");
    EXPECT_EQ(early.ledName, "red");
    EXPECT_EQ(early.ledState, 5U);
    EXPECT_EQ(early.resetType, "Watchdog");
    EXPECT_EQ(early.productName, "KT4851_4");
    EXPECT_EQ(early.dspName, "EndOfList");
}

TEST(EarlyQuery, IsAnsweredTheSameLater)
{
    fakeboard::eeprom().result = 0;
    EXPECT_EQ(os::bsp::getHwRevision(), 24);
    EXPECT_EQ(fakeboard::eeprom().reads, 1);
}

} // namespace
