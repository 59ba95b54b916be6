/**
 * @file
 * @brief The C library's semaphores and mutexes as they lie in memory, of programs of this word
 *        size and of the other one. Looking at them takes no lock.
 */
#ifndef TOOLS_DIAG_EVIDENCE_GLIBCLOCKS_H
#define TOOLS_DIAG_EVIDENCE_GLIBCLOCKS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include <semaphore.h>
#include <sys/types.h>

namespace glibc
{

enum class WordSize
{
    Bits32,
    Bits64
};

constexpr WordSize OwnWordSize = sizeof(void*) == 4 ? WordSize::Bits32 : WordSize::Bits64;

const char* textOf(WordSize wordSize);

/** Where things are in a pthread_mutex_t. */
struct MutexLayout
{
    std::size_t size;
    std::size_t owner; /**< Thread that holds it; 0 for none. */
    std::size_t kind;
    std::size_t alignment; /**< So it follows a 32-bit word at this offset. */
};

constexpr MutexLayout layoutOf(WordSize wordSize)
{
    return wordSize == WordSize::Bits32 ? MutexLayout{24, 8, 12, 4} : MutexLayout{40, 8, 16, 8};
}

/** A mutex as it was found. */
struct MutexState
{
    bool isHeld = false;
    /** The thread that holds it; 0 when it has not said so yet. */
    pid_t owner = 0;
};

/** Nothing when there are not enough bytes. */
std::optional<MutexState> mutexState(std::string_view bytes, WordSize wordSize);

/** Whether this is a mutex that was set up for several processes. */
bool isSharedMutex(std::string_view bytes, WordSize wordSize);

constexpr std::size_t semaphoreSize(WordSize wordSize)
{
    return wordSize == WordSize::Bits32 ? 16 : 32;
}

struct SemaphoreState
{
    std::uint32_t value = 0;
    std::uint32_t waiters = 0;
};

/** Nothing when there are not enough bytes. */
std::optional<SemaphoreState> semaphoreState(std::string_view bytes, WordSize wordSize);

static_assert(sizeof(pthread_mutex_t) == layoutOf(OwnWordSize).size, "the C library's");
static_assert(alignof(pthread_mutex_t) == layoutOf(OwnWordSize).alignment, "the C library's");
static_assert(sizeof(sem_t) == semaphoreSize(OwnWordSize), "the C library's");

} // namespace glibc

#endif
