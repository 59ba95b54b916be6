#ifndef TOOLS_DIAG_EVIDENCE_EVIDENCE_H
#define TOOLS_DIAG_EVIDENCE_EVIDENCE_H

#include "BoardFacts.h"
#include "BspEnumerations.h"
#include "evidence/Devices.h"
#include "evidence/Eeprom.h"
#include "evidence/HeldLocks.h"
#include "evidence/KernelImage.h"
#include "evidence/Leds.h"
#include "evidence/Places.h"
#include "evidence/ProcessTable.h"
#include "evidence/SharedNames.h"
#include "evidence/Store.h"
#include "evidence/SystemSettings.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/** Longer than any program holds a lock that goes on. */
constexpr std::chrono::milliseconds Moment(200);

/** What the layer makes of the hardware code, as far as it needs no other hardware. */
struct IdentityEvidence
{
    IdentityEvidence();

    bool isVariantKnown = false;
    /** The words of the code without a meaning, such as "3 (traffic FPGA)". */
    std::vector<std::string> unknownWords;
    os::bsp::PlatformType platform;
    os::bsp::ProductId product;
    /** Nothing when the device library failed. */
    std::optional<os::bsp::ResetType> resetType;
};

/** All that can be seen of a board, none of it changed, nothing waited for and no lock taken. */
struct Evidence
{
    /** @param watch  how long a lock must be held before it is more than a moment */
    Evidence(const Places& where, std::chrono::milliseconds watch);
    Evidence(const Evidence&) = delete;
    Evidence& operator=(const Evidence&) = delete;

    /** Whether the first program that comes will clear the warm area, whatever is in it. */
    bool willBeCleared() const;
    facts::RawBoard rawBoard() const;

    const Places places;
    const IdentityEvidence identity;
    const Dtcm dtcm;
    const Reading<std::string> area;
    const LockableMemory lockableMemory;
    const Reading<std::uint32_t> resetCause;
    const bool coldMarker;
    const ProcessTable processes;
    const SharedNames names;
    const HeldLocks held;
    const KernelImageEvidence kernelImage;
    const Reading<facts::Settings> settings;
    const std::optional<std::string> whySettingsNotWritable;
    const std::vector<LedEvidence> leds;
    const SystemEvidence system;
};

#endif
