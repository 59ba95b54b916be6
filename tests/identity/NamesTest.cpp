#include "BspEnumerations.h"

#include <gmock/gmock.h>

#include <climits>
#include <initializer_list>

namespace
{

using namespace os::bsp;

/** Whether the values count up from 0. */
template <typename Enumeration> constexpr bool countUp(std::initializer_list<Enumeration> values)
{
    int expected = 0;
    for (const Enumeration value : values) {
        if (static_cast<int>(value) != expected) {
            return false;
        }
        ++expected;
    }
    return true;
}

static_assert(countUp({ProductId::KT4754, ProductId::KT4752, ProductId::KT4751, ProductId::VX4791,
                       ProductId::RG4792, ProductId::NXU4A, ProductId::NXU2001, ProductId::NXU2002,
                       ProductId::DWB2001, ProductId::DWB2002, ProductId::KT4851_1,
                       ProductId::KT4851_2, ProductId::KT4851_3, ProductId::KT4766,
                       ProductId::KT4851_4, ProductId::NXU2003, ProductId::NXU2004,
                       ProductId::DWB2003, ProductId::EndOfList}));
static_assert(countUp({HwRevision::R1_P2, HwRevision::R1_P3, HwRevision::R1_P4, HwRevision::R1_P5,
                       HwRevision::R2_P1, HwRevision::R2_P2, HwRevision::XPIC,
                       HwRevision::EndOfList}));
static_assert(countUp({SwitchType::None, SwitchType::Etm, SwitchType::BobCat2, SwitchType::Cetus,
                       SwitchType::EndOfList}));
static_assert(countUp({DspType::None, DspType::Atlas, DspType::BCM85100, DspType::BCM85110,
                       DspType::BCM85650, DspType::BCM85655, DspType::BCM85651,
                       DspType::EndOfList}));
static_assert(countUp({TrafFpgaType::None,   TrafFpgaType::Avocet,  TrafFpgaType::Bittern,
                       TrafFpgaType::Curlew, TrafFpgaType::Dunlin,  TrafFpgaType::Eider,
                       TrafFpgaType::Fulmar, TrafFpgaType::Gannet,  TrafFpgaType::Heron,
                       TrafFpgaType::Ibis,   TrafFpgaType::Jackdaw, TrafFpgaType::Kestrel,
                       TrafFpgaType::Linnet, TrafFpgaType::Mallard, TrafFpgaType::Nightjar,
                       TrafFpgaType::Osprey, TrafFpgaType::Osprey2, TrafFpgaType::Puffin,
                       TrafFpgaType::Quail,  TrafFpgaType::Redwing, TrafFpgaType::Siskin,
                       TrafFpgaType::Teal,   TrafFpgaType::Wigeon,  TrafFpgaType::EndOfList}));
static_assert(countUp({ControlBackplane::None, ControlBackplane::Pci, ControlBackplane::Pcie,
                       ControlBackplane::Ethernet, ControlBackplane::EndOfList}));
static_assert(countUp({TrafficBackplane::None, TrafficBackplane::Ptp, TrafficBackplane::Ethernet,
                       TrafficBackplane::EndOfList}));
static_assert(countUp({RadiolinkMode::Rl4, RadiolinkMode::Rl5, RadiolinkMode::EndOfList}));
static_assert(countUp({PlatformType::Pt, PlatformType::Nxu4, PlatformType::Nxu5,
                       PlatformType::EndOfList}));
static_assert(countUp({ResetType::Cold, ResetType::Warm, ResetType::Watchdog, ResetType::Unknown,
                       ResetType::EndOfList}));

// Any integer that hardware reports must be a valid value.
static_assert(std::is_same<std::underlying_type<ProductId>::type, int>::value);
static_assert(std::is_same<std::underlying_type<HwRevision>::type, int>::value);
static_assert(std::is_same<std::underlying_type<RadiolinkMode>::type, int>::value);
static_assert(std::is_same<std::underlying_type<ResetType>::type, int>::value);

/** The table has a row for each text, the value being its position, and the end row; so has C. */
template <std::size_t Size>
void expectTable(const NameEntry (&table)[Size], const char* (*nameInC)(int),
                 const std::vector<std::string>& texts)
{
    ASSERT_EQ(Size, texts.size() + 1);
    for (std::size_t row = 0; row < texts.size(); ++row) {
        EXPECT_EQ(table[row].value, static_cast<int>(row));
        EXPECT_EQ(table[row].text, texts[row]);
        EXPECT_EQ(nameOf(table, static_cast<int>(row)), texts[row]);
        EXPECT_EQ(nameInC(static_cast<int>(row)), texts[row]);
    }
    const int end = static_cast<int>(texts.size());
    EXPECT_EQ(table[texts.size()].value, end);
    EXPECT_EQ(table[texts.size()].text, "EndOfList");
    for (const int unknown : {end, end + 1, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(nameOf(table, unknown), "EndOfList") << unknown;
        EXPECT_STREQ(nameInC(unknown), "EndOfList") << unknown;
    }
}

TEST(Names, OfProducts)
{
    expectTable(productIdNames, Bsp_productIdName,
                {"KT4754", "KT4752", "KT4751", "VX4791", "RG4792", "NXU4A", "NXU2001", "NXU2002",
                 "DWB2001", "DWB2002", "KT4851_1", "KT4851_2", "KT4851_3", "KT4766", "KT4851_4",
                 "NXU2003", "NXU2004", "DWB2003"});
}

TEST(Names, OfHardwareRevisions)
{
    expectTable(hwRevisionNames, Bsp_hwRevisionName,
                {"R1_P2", "R1_P3", "R1_P4", "R1_P5", "R2_P1", "R2_P2", "XPIC"});
}

TEST(Names, OfSwitches)
{
    expectTable(switchTypeNames, Bsp_switchTypeName, {"None", "Etm", "BobCat2", "Cetus"});
}

TEST(Names, OfDsps)
{
    expectTable(dspTypeNames, Bsp_dspTypeName,
                {"None", "Atlas", "BCM85100", "BCM85110", "BCM85650", "BCM85655", "BCM85651"});
}

TEST(Names, OfTrafficFpgas)
{
    expectTable(trafFpgaTypeNames, Bsp_trafFpgaTypeName,
                {"None",   "Avocet",  "Bittern",  "Curlew", "Dunlin",  "Eider",
                 "Fulmar", "Gannet",  "Heron",    "Ibis",   "Jackdaw", "Kestrel",
                 "Linnet", "Mallard", "Nightjar", "Osprey", "Osprey2", "Puffin",
                 "Quail",  "Redwing", "Siskin",   "Teal",   "Wigeon"});
}

TEST(Names, OfControlBackplanes)
{
    expectTable(controlBackplaneNames, Bsp_controlBackplaneName,
                {"None", "Pci", "Pcie", "Ethernet"});
}

TEST(Names, OfTrafficBackplanes)
{
    expectTable(trafficBackplaneNames, Bsp_trafficBackplaneName, {"None", "Ptp", "Ethernet"});
}

TEST(Names, OfRadiolinkModes)
{
    expectTable(radiolinkModeNames, Bsp_radiolinkModeName, {"Rl4", "Rl5"});
}

TEST(Names, OfPlatforms)
{
    expectTable(platformTypeNames, Bsp_platformTypeName, {"Pt", "Nxu4", "Nxu5"});
}

TEST(Names, OfResetTypes)
{
    expectTable(resetTypeNames, Bsp_resetTypeName, {"Cold", "Warm", "Watchdog", "Unknown"});
}

TEST(Names, AreFoundForTheEnumerationToo)
{
    EXPECT_EQ(nameOf(trafficBackplaneNames, TrafficBackplane::Ethernet), "Ethernet");
    EXPECT_EQ(nameOf(controlBackplaneNames, ControlBackplane::EndOfList), "EndOfList");
    EXPECT_EQ(nameOf(productIdNames, static_cast<ProductId>(INT_MIN)), "EndOfList");
}

TEST(Names, AreFoundByValueNotByPosition)
{
    const NameEntry table[] = {{7, "seven"}, {-1, "minus one"}, {7, "again"}, {9, "EndOfList"}};
    EXPECT_EQ(nameOf(table, 7), "seven");
    EXPECT_EQ(nameOf(table, -1), "minus one");
    EXPECT_EQ(nameOf(table, 0), "EndOfList");
    EXPECT_EQ(nameOf(table, 9), "EndOfList");
}

// What made the enumerations is not the programs' business.
#if defined(BSP_ENUMERATIONS) || defined(BSP_PRODUCT_ID_ROWS) || defined(BSP_RESET_TYPE_ROWS)
#error "macros of BspEnumerations.h are left"
#endif

} // namespace
