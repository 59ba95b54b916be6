#include "evidence/HeldLocks.h"

#include "WarmArea.h"
#include "WarmLayout.h"

#include <thread>

namespace
{

using glibc::WordSize;
using os::bsp::dtcm::NumberOfBlocks;

constexpr WordSize WordSizes[] = {WordSize::Bits32, WordSize::Bits64};

std::optional<std::uint32_t> lookAtSemaphore(const SharedName& name)
{
    const auto wordSize = name.file ? wordSizeOfSemaphore(name.file->size()) : std::nullopt;
    if (!wordSize) {
        return std::nullopt;
    }
    const auto state =
        glibc::semaphoreState(name.file->bytes(glibc::semaphoreSize(*wordSize)), *wordSize);
    return state && state->value == 0 ? std::optional(state->waiters) : std::nullopt;
}

std::map<unsigned int, pid_t> lookAtBlocks(const SharedName& name)
{
    std::map<unsigned int, pid_t> held;
    const auto wordSize = name.file ? wordSizeOfSyncArea(name.file->size()) : std::nullopt;
    if (!wordSize) {
        return held;
    }
    const std::size_t size = glibc::layoutOf(*wordSize).size;
    const std::string bytes = name.file->bytes(NumberOfBlocks * size);
    for (unsigned int index = 0; (index + 1) * size <= bytes.size(); ++index) {
        const auto state =
            glibc::mutexState(std::string_view(bytes).substr(index * size, size), *wordSize);
        if (state && state->isHeld) {
            held[index + 1] = state->owner;
        }
    }
    return held;
}

std::optional<pid_t> lookAtSlot(const Dtcm& dtcm)
{
    const Reading<std::string> bytes = dtcm.area();
    if (!bytes.isKnown()) {
        return std::nullopt;
    }
    const WarmArea area(*bytes);
    const auto block = area.find(os::bsp::dtcm::SlotObjectName);
    if (!block) {
        return std::nullopt;
    }
    const std::string_view object = block->bytes.substr(WarmArea::NameSize);
    const auto wordSize = wordSizeOfSlot(object);
    if (!wordSize) {
        return std::nullopt;
    }
    const glibc::MutexLayout layout = glibc::layoutOf(*wordSize);
    const auto state = glibc::mutexState(object.substr(layout.alignment, layout.size), *wordSize);
    return state && state->isHeld ? std::optional(state->owner) : std::nullopt;
}

HeldLocks look(const SharedNames& names, const Dtcm& dtcm)
{
    return {lookAtSemaphore(names.semaphore), lookAtBlocks(names.syncArea), lookAtSlot(dtcm)};
}

/** What is held in both, by the same thread. */
HeldLocks common(const HeldLocks& before, const HeldLocks& now)
{
    HeldLocks both;
    if (before.waitersForSemaphore && now.waitersForSemaphore) {
        both.waitersForSemaphore = now.waitersForSemaphore;
    }
    for (const auto& [block, holder] : now.blocks) {
        const auto found = before.blocks.find(block);
        if (found != before.blocks.end() && found->second == holder) {
            both.blocks[block] = holder;
        }
    }
    if (before.slot && before.slot == now.slot) {
        both.slot = now.slot;
    }
    return both;
}

} // namespace

HeldLocks watchLocks(const SharedNames& names, const Dtcm& dtcm, std::chrono::milliseconds time)
{
    constexpr int looks = 10;
    HeldLocks held = look(names, dtcm);
    for (int i = 0; i < looks && !held.none(); ++i) {
        std::this_thread::sleep_for(time / looks);
        held = common(held, look(names, dtcm));
    }
    return held;
}

std::optional<WordSize> wordSizeOfSyncArea(std::size_t size)
{
    for (const WordSize wordSize : WordSizes) {
        if (size == NumberOfBlocks * glibc::layoutOf(wordSize).size) {
            return wordSize;
        }
    }
    return std::nullopt;
}

std::optional<WordSize> wordSizeOfSemaphore(std::size_t size)
{
    for (const WordSize wordSize : WordSizes) {
        if (size == glibc::semaphoreSize(wordSize)) {
            return wordSize;
        }
    }
    return std::nullopt;
}

std::optional<WordSize> wordSizeOfSlot(std::string_view object)
{
    // Where the 64-bit mutex has its kind, the 32-bit one has a word that is always 0.
    for (const WordSize wordSize : {WordSize::Bits64, WordSize::Bits32}) {
        const std::size_t offset = glibc::layoutOf(wordSize).alignment;
        if (object.size() > offset && glibc::isSharedMutex(object.substr(offset), wordSize)) {
            return wordSize;
        }
    }
    return std::nullopt;
}
