/**
 * @file
 * @brief The locks around the warm area that are held for longer than a moment.
 */
#ifndef TOOLS_DIAG_EVIDENCE_HELDLOCKS_H
#define TOOLS_DIAG_EVIDENCE_HELDLOCKS_H

#include "evidence/Devices.h"
#include "evidence/GlibcLocks.h"
#include "evidence/SharedNames.h"

#include <chrono>
#include <map>
#include <optional>

/** What was held each time that one looked, by the same thread. */
struct HeldLocks
{
    /** The semaphore's waiters, when it was 0. */
    std::optional<std::uint32_t> waitersForSemaphore;
    /** Holders of blocks' mutexes, by the block counted from 1; 0 when it is not known. */
    std::map<unsigned int, pid_t> blocks;
    /** Holder of the mutex that guards the slot id. */
    std::optional<pid_t> slot;

    bool none() const { return !waitersForSemaphore && blocks.empty() && !slot; }
};

/** Looks several times within that time, but only once where nothing is held. */
HeldLocks watchLocks(const SharedNames& names, const Dtcm& dtcm, std::chrono::milliseconds time);

/** By whose word size the mutexes of the blocks lie there; nothing for another size. */
std::optional<glibc::WordSize> wordSizeOfSyncArea(std::size_t size);
std::optional<glibc::WordSize> wordSizeOfSemaphore(std::size_t size);

/** By whose word size the object with the slot id was made; nothing when it does not show. */
std::optional<glibc::WordSize> wordSizeOfSlot(std::string_view object);

#endif
