#include "evidence/Evidence.h"

#include "Bsp.h"
#include "HardwareCode.h"

#include <exception>

#include <unistd.h>

namespace
{

using namespace os::bsp; // NOLINT(google-build-using-namespace): nearly every name is the layer's

std::optional<ResetType> resetTypeOfLayer()
{
    try {
        return getResetType();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace

IdentityEvidence::IdentityEvidence()
    : platform(getPlatformType()), product(getProductId()), resetType(resetTypeOfLayer())
{
    const Reading<std::string> code = hardwareCode();
    isVariantKnown = code.isKnown() && hardwarecode::bytesOf(Bsp_getNxuHwVariant()->code) == *code;
    const auto note = [this](bool isUnknown, const char* word) {
        if (isUnknown) {
            unknownWords.emplace_back(word);
        }
    };
    note(platform == PlatformType::EndOfList, "1 (platform)");
    note(getControlBackplane() == ControlBackplane::EndOfList, "2 (control backplane)");
    note(getTrafficBackplane() == TrafficBackplane::EndOfList, "3 (traffic FPGA)");
    note(getDspType() == DspType::EndOfList, "5 (DSP)");
}

Evidence::Evidence(const Places& where, std::chrono::milliseconds watch)
    : places(where), area(dtcm.area()), lockableMemory(::lockableMemory()),
      resetCause(::resetCause()), coldMarker(::access(where.coldMarker().c_str(), F_OK) == 0),
      processes(where), names(lookAtSharedNames(where, processes, dtcm, watch)),
      held(watchLocks(names, dtcm, watch)), kernelImage(lookAtKernelImage(where, processes)),
      settings(facts::readSettings()), whySettingsNotWritable(whyNotWritable()),
      leds(lookAtLeds(where)), system(lookAtSystem(where, processes))
{}

bool Evidence::willBeCleared() const
{
    return !names.semaphore.file && identity.resetType == os::bsp::ResetType::Cold;
}

facts::RawBoard Evidence::rawBoard() const
{
    facts::RawBoard board;
    board.hardwareCode = hardwareCode();
    board.resetType = identity.resetType
                          ? Reading<os::bsp::ResetType>(*identity.resetType)
                          : Reading<os::bsp::ResetType>::unknown("the device library failed");
    board.resetCause = resetCause;
    board.coldMarker = coldMarker;
    board.settings = settings;
    for (const LedEvidence& led : leds) {
        board.leds.push_back({led.name, led.state});
    }
    board.warmArea = area;
    board.isWarmAreaInUse = names.semaphore.file.has_value();
    return board;
}
