#include "WarmArea.h"
#include "WarmLayout.h"
#include "findings/SharedNames.h"
#include "findings/Subjects.h"

namespace
{

using os::bsp::ResetType;

void judgeMutex(const Evidence& evidence, pid_t thread, Diagnosis& diagnosis)
{
    const Holder holder = holderOf(evidence, thread, evidence.dtcm.identity());
    if (holder.isAlive) {
        diagnosis.add("slot-mutex-held", {{"holder", holder.text}});
        return;
    }
    // A restart empties the shared memory, and keeps the area.
    const bool isUsedSince = evidence.names.semaphore.file || evidence.names.syncArea.file;
    if (isUsedSince) {
        diagnosis.add("slot-mutex-dead", {{"holder", holder.text}});
        return;
    }
    const ResetType type = evidence.identity.resetType.value_or(ResetType::Unknown);
    diagnosis.add("slot-mutex-before-restart",
                  {{"holder", holder.text}, {"reset", nameOf(os::bsp::resetTypeNames, type)}});
}

} // namespace

void judgeSlot(const Evidence& evidence, Diagnosis& diagnosis)
{
    if (!evidence.area.isKnown() || evidence.willBeCleared()) {
        return;
    }
    if (evidence.held.slot) {
        judgeMutex(evidence, *evidence.held.slot, diagnosis);
    }
    const WarmArea area(*evidence.area);
    const auto slot = area.find(os::bsp::dtcm::SlotObjectName);
    const auto wordSize =
        slot ? wordSizeOfSlot(slot->bytes.substr(WarmArea::NameSize)) : std::nullopt;
    if (wordSize && *wordSize != glibc::OwnWordSize) {
        diagnosis.add("slot-word-size", {{"block", std::to_string(slot->number)},
                                         {"found", glibc::textOf(*wordSize)},
                                         {"own", glibc::textOf(glibc::OwnWordSize)}});
    }
}
