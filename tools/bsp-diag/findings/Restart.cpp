#include "findings/Subjects.h"

namespace
{

using os::bsp::PlatformType;
using os::bsp::ProductId;
using os::bsp::ResetType;

bool goesByMarker(const IdentityEvidence& identity)
{
    return identity.platform != PlatformType::Nxu4 && identity.product == ProductId::KT4851_4;
}

void judgeMarker(const Evidence& evidence, std::uint32_t word, Diagnosis& diagnosis)
{
    const bool isCold = word == static_cast<std::uint32_t>(ResetType::Cold);
    const std::string cause = nameOf(os::bsp::resetTypeNames, static_cast<int>(word));
    const std::string marker = evidence.places.coldMarker();
    if (evidence.coldMarker && !isCold) {
        diagnosis.add("cold-marker-stale",
                      {{"marker", marker},
                       {"cause", cause},
                       {"effect", goesByMarker(evidence.identity)
                                      ? "the restart counts as cold: the warm area is cleared"
                                      : "none here: this product does not go by the mark"}});
    }
    if (!evidence.coldMarker && isCold && goesByMarker(evidence.identity)) {
        diagnosis.add("cold-marker-missing", {{"marker", marker}, {"cause", cause}});
    }
}

} // namespace

void judgeRestart(const Evidence& evidence, Diagnosis& diagnosis)
{
    // Other platforms may do without registers.
    const bool needsRegisters = evidence.identity.platform == PlatformType::Nxu4;
    if (!evidence.resetCause.isKnown()) {
        if (needsRegisters) {
            diagnosis.add("registers-missing", {{"reason", evidence.resetCause.reason()}});
        }
        return;
    }
    const std::uint32_t word = *evidence.resetCause;
    if (word >= static_cast<std::uint32_t>(ResetType::EndOfList)) {
        diagnosis.add("reset-cause-none", {{"cause", std::to_string(word)}});
    } else if (word != static_cast<std::uint32_t>(ResetType::Unknown)) {
        judgeMarker(evidence, word, diagnosis);
    }
}
