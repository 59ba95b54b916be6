#include "Bsp.h"

#include "BspTrace.h"
#include "HvxMessage.h"
#include "NxuConfig.h"
#include "Products.h"
#include "identity/HardwareCode.h"

#include <cstddef>
#include <optional>

namespace os::bsp
{

namespace
{

/** What a word of the hardware code stands for. */
enum Word
{
    PlatformWord = 1,
    ControlBackplaneWord = 2,
    TrafficWord = 3,
    DspWord = 5
};

/** What a value of a word means. */
template <typename Meaning> struct Row
{
    int value;
    Meaning meaning;
};

struct Traffic
{
    TrafFpgaType fpga;
    TrafficBackplane backplane;
    int radiolinks;
    /** The setting of key::FpgaVariant that makes it the other FPGA; null where there is none. */
    const std::string* otherSetting;
    TrafFpgaType otherFpga;
};

constexpr const std::string* NoSetting = nullptr;
constexpr const std::string* TwoTdm = &value::fpgaVariant::TwoTdm;
constexpr const std::string* OneTdm = &value::fpgaVariant::OneTdmRleEqpNoMlhc;

constexpr Row<Traffic> traffics[] = {
    {0, {TrafFpgaType::Fulmar, TrafficBackplane::Ptp, 2, TwoTdm, TrafFpgaType::Gannet}},
    {3, {TrafFpgaType::Linnet, TrafficBackplane::Ethernet, 2, OneTdm, TrafFpgaType::Mallard}},
    {4, {TrafFpgaType::Nightjar, TrafficBackplane::Ethernet, 1, NoSetting, TrafFpgaType::None}},
    {5, {TrafFpgaType::Osprey, TrafficBackplane::Ethernet, 2, TwoTdm, TrafFpgaType::Osprey2}},
    {6, {TrafFpgaType::Puffin, TrafficBackplane::Ethernet, 2, NoSetting, TrafFpgaType::None}},
    {7, {TrafFpgaType::Quail, TrafficBackplane::Ethernet, 1, NoSetting, TrafFpgaType::None}},
    {8, {TrafFpgaType::Redwing, TrafficBackplane::Ethernet, 2, TwoTdm, TrafFpgaType::Siskin}},
};

constexpr Row<DspType> dsps[] = {
    {0, DspType::BCM85650},
    {2, DspType::BCM85655},
    {4, DspType::BCM85651},
};

constexpr Row<PlatformType> platforms[] = {
    {0, PlatformType::Nxu4},
    {1, PlatformType::Nxu5},
};

constexpr Row<ControlBackplane> controlBackplanes[] = {
    {0, ControlBackplane::Pci},
    {1, ControlBackplane::Pcie},
    {2, ControlBackplane::Ethernet},
};

/** The meaning of a value; null when the table does not know it. */
template <typename Meaning, std::size_t Size>
const Meaning* find(const Row<Meaning> (&rows)[Size], int value)
{
    for (const Row<Meaning>& row : rows) {
        if (row.value == value) {
            return &row.meaning;
        }
    }
    return nullptr;
}

/** The same word of the selected variant; it is another one when no variant has the code. */
int variantWord(Word word)
{
    return selectedVariant().code.word[word];
}

bool isFpgaVariant(const std::string& setting)
{
    const NxuConfig config;
    return config.get(key::FpgaVariant) == setting;
}

} // namespace

// The queries go by the hardware code as it was read; their messages quote the selected variant.

TrafFpgaType getTrafFpgaType()
{
    const Traffic* traffic = find(traffics, hwCode().word[TrafficWord]);
    if (traffic == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Not supported traffic FPGA: " << variantWord(TrafficWord));
        return TrafFpgaType::EndOfList;
    }
    const bool isOther =
        traffic->otherSetting != NoSetting && isFpgaVariant(*traffic->otherSetting);
    return isOther ? traffic->otherFpga : traffic->fpga;
}

DspType getDspType()
{
    TRACE_ENTER(bspTrace);
    const DspType* dsp = find(dsps, hwCode().word[DspWord]);
    if (dsp == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Unknown dspType: " << variantWord(DspWord));
        return DspType::EndOfList;
    }
    return *dsp;
}

PlatformType getPlatformType()
{
    const PlatformType* platform = find(platforms, hwCode().word[PlatformWord]);
    if (platform == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Unknown platformType: " << variantWord(PlatformWord));
        return PlatformType::EndOfList;
    }
    return *platform;
}

TrafficBackplane getTrafficBackplane()
{
    const Traffic* traffic = find(traffics, hwCode().word[TrafficWord]);
    if (traffic == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Unknown backplaneType: " << variantWord(TrafficWord));
        return TrafficBackplane::EndOfList;
    }
    return traffic->backplane;
}

ControlBackplane getControlBackplane()
{
    const ControlBackplane* backplane =
        find(controlBackplanes, hwCode().word[ControlBackplaneWord]);
    if (backplane == nullptr) {
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Unknown backplaneType: " << variantWord(ControlBackplaneWord));
        return ControlBackplane::EndOfList;
    }
    return *backplane;
}

int getNumberOfRadiolinks()
{
    constexpr int Default = 2;
    TRACE_ENTER(bspTrace);
    const int word = hwCode().word[TrafficWord];
    const Traffic* traffic = find(traffics, word);
    if (traffic == nullptr) {
        // Unlike the others, this message quotes the code as it was read.
        TRACE_MESSAGE(bspTrace, trace::Error, "Unknown traf type: " << word);
        return Default;
    }
    return traffic->radiolinks;
}

unsigned int getNumberOfChannels()
{
    constexpr unsigned int Default = 1;
    TRACE_ENTER(bspTrace);
    const std::optional<unsigned int> known = channelsOf(getProductId());
    if (!known) {
        // The product is asked for again, which reports an unknown product code once more.
        TRACE_MESSAGE(bspTrace, trace::Error,
                      "Unknown product id: " << static_cast<int>(getProductId()));
    }
    const unsigned int numberOfChannels = known.value_or(Default);
    TRACE_MESSAGE(bspTrace, trace::Detail, "numberOfChannels = " << numberOfChannels);
    return numberOfChannels;
}

SwitchType getSwitchType()
{
    TRACE_ENTER(bspTrace);
    return SwitchType::None;
}

} // namespace os::bsp
