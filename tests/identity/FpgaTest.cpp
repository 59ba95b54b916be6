/**
 * @file
 * @brief The traffic FPGA where a setting decides on it, and the paths of the FPGAs' images.
 */
#include "Bsp.h"
#include "FakeBoard.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{

using namespace fakeboard;
using recordingtrace::takeLines;
using testing::IsEmpty;

constexpr std::size_t TrafficFpgaWord = 3;

struct Setting
{
    int value;
    const std::string* setting;
    int answer;
};

void PrintTo(const Setting& setting, std::ostream* stream)
{
    *stream << setting.value << " with " << testing::PrintToString(*setting.setting) << " is "
            << setting.answer;
}

class FpgaVariant : public testing::TestWithParam<Setting>
{};

TEST_P(FpgaVariant, DecidesOnTheTrafficFpga)
{
    setWord(TrafficFpgaWord, GetParam().value);
    store().values[os::bsp::key::FpgaVariant] = *GetParam().setting;
    EXPECT_EQ(static_cast<int>(os::bsp::getTrafFpgaType()), GetParam().answer);
    EXPECT_EQ(Bsp_getTrafFpgaType(), GetParam().answer);
    EXPECT_THAT(takeLines(), IsEmpty());
}

const std::string* const TwoTdm = &os::bsp::value::fpgaVariant::TwoTdm;
const std::string* const OneTdm = &os::bsp::value::fpgaVariant::OneTdmRleEqpNoMlhc;
const std::string foreign = "foreign";
const std::string sameAsCString = "fpga"; // Both settings begin with this and a NUL.
const std::string longer = std::string("fpga\0TwoTdm", 11) + '\0';

INSTANTIATE_TEST_SUITE_P(
    Settings, FpgaVariant,
    testing::Values(Setting{0, TwoTdm, 7}, Setting{0, OneTdm, 6}, Setting{0, &foreign, 6},
                    Setting{0, &sameAsCString, 6}, Setting{0, &longer, 6}, Setting{3, OneTdm, 13},
                    Setting{3, TwoTdm, 12}, Setting{3, &foreign, 12},
                    Setting{3, &sameAsCString, 12}, Setting{4, TwoTdm, 14}, Setting{4, OneTdm, 14},
                    Setting{5, TwoTdm, 16}, Setting{5, OneTdm, 15}, Setting{5, &foreign, 15},
                    Setting{6, TwoTdm, 17}, Setting{6, OneTdm, 17}, Setting{7, TwoTdm, 18},
                    Setting{7, OneTdm, 18}, Setting{8, TwoTdm, 20}, Setting{8, OneTdm, 19},
                    Setting{8, &foreign, 19}));

class WithSetting : public testing::TestWithParam<int>
{};

TEST_P(WithSetting, AsksTheStoreAnewAtEveryCall)
{
    setWord(TrafficFpgaWord, GetParam());
    const int unset = Bsp_getTrafFpgaType();
    EXPECT_EQ(store().made, 1);
    EXPECT_EQ(store().destroyed, 1);
    store().values[os::bsp::key::FpgaVariant] = GetParam() == 3 ? *OneTdm : *TwoTdm;
    EXPECT_EQ(Bsp_getTrafFpgaType(), unset + 1);
    EXPECT_EQ(store().made, 2);
    EXPECT_EQ(store().destroyed, 2);
    store().values.clear();
    EXPECT_EQ(Bsp_getTrafFpgaType(), unset);
    EXPECT_EQ(fakeboard::eeprom().reads, 1);
}

INSTANTIATE_TEST_SUITE_P(Words, WithSetting, testing::Values(0, 3, 5, 8));

class WithoutSetting : public testing::TestWithParam<int>
{};

TEST_P(WithoutSetting, LeavesTheStoreAlone)
{
    setWord(TrafficFpgaWord, GetParam());
    Bsp_getTrafFpgaType();
    EXPECT_EQ(store().made, 0);
    takeLines();
}

INSTANTIATE_TEST_SUITE_P(Words, WithoutSetting, testing::Values(1, 2, 4, 6, 7, 9));

TEST(TrafFpgaType, PassesTheStoresExceptions)
{
    setWord(TrafficFpgaWord, 0);
    store().onUse = [] { throw std::range_error("store"); };
    EXPECT_THROW(os::bsp::getTrafFpgaType(), std::range_error);
    EXPECT_THROW(Bsp_getTrafFpgaType(), std::range_error);
    EXPECT_EQ(store().destroyed, 2);
}

TEST(FpgaPath, IsFoundByTheKey)
{
    constexpr std::pair<const char*, const char*> images[] = {
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
    for (const auto& [key, path] : images) {
        EXPECT_STREQ(os::bsp::getFpgaPath(key), path);
        EXPECT_STREQ(Bsp_getFpgaPath(key), path);
    }
}

TEST(FpgaPath, IsNullForAnyOtherText)
{
    for (const char* name : {"Osprey2", "", "osprey3", "ospre", "pci ", " pci", "PCI", "wigeon"}) {
        EXPECT_EQ(os::bsp::getFpgaPath(name), nullptr) << name;
        EXPECT_EQ(Bsp_getFpgaPath(name), nullptr) << name;
    }
    EXPECT_THAT(takeLines(), IsEmpty());
    EXPECT_EQ(fakeboard::eeprom().reads, 0);
    EXPECT_EQ(store().made, 0);
}

} // namespace
