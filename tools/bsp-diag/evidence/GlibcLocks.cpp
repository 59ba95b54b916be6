#include "evidence/GlibcLocks.h"

#include <cstring>

namespace glibc
{

namespace
{

/** The type of a mutex that several processes share. */
constexpr std::uint32_t SharedKind = 0x80;

std::uint32_t wordAt(std::string_view bytes, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

} // namespace

const char* textOf(WordSize wordSize)
{
    return wordSize == WordSize::Bits32 ? "32-bit" : "64-bit";
}

std::optional<MutexState> mutexState(std::string_view bytes, WordSize wordSize)
{
    const MutexLayout layout = layoutOf(wordSize);
    if (bytes.size() < layout.size) {
        return std::nullopt;
    }
    return MutexState{wordAt(bytes, 0) != 0, static_cast<pid_t>(wordAt(bytes, layout.owner))};
}

bool isSharedMutex(std::string_view bytes, WordSize wordSize)
{
    const MutexLayout layout = layoutOf(wordSize);
    return bytes.size() >= layout.size && wordAt(bytes, layout.kind) == SharedKind;
}

std::optional<SemaphoreState> semaphoreState(std::string_view bytes, WordSize wordSize)
{
    if (bytes.size() < semaphoreSize(wordSize)) {
        return std::nullopt;
    }
    // With 64 bits the value and the waiters are one word. With 32 the value's lowest bit says
    // that there are waiters, whose number is the last word.
    constexpr std::size_t waiters64 = 4;
    constexpr std::size_t waiters32 = 12;
    return wordSize == WordSize::Bits64
               ? SemaphoreState{wordAt(bytes, 0), wordAt(bytes, waiters64)}
               : SemaphoreState{wordAt(bytes, 0) >> 1U, wordAt(bytes, waiters32)};
}

} // namespace glibc
