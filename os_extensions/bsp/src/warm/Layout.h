#ifndef BSP_WARMDATABASELAYOUT_H
#define BSP_WARMDATABASELAYOUT_H

#include <cstddef>
#include <mutex>

#include <pthread.h>

namespace os
{
namespace bsp
{
namespace dtcm
{

constexpr unsigned int NumberOfBlocks = 32;
constexpr std::size_t MaxNameLength = 15;
constexpr std::size_t MaxObjectSize = 1008;

constexpr std::size_t NameSize = MaxNameLength + 1;

/** A block of the warm area. It is free while the first byte of its name is 0. */
struct Block
{
    unsigned char name[NameSize]; /**< NUL-terminated, unless the area was never cleared. */
    unsigned char data[MaxObjectSize];
};

static_assert(sizeof(Block::name) == 16, "16 bytes of name");
static_assert(offsetof(Block, data) == 16 && sizeof(Block::data) == 1008, "1008 bytes of data");
static_assert(sizeof(Block) == 1024, "blocks follow each other without a gap");

constexpr std::size_t AreaSize = NumberOfBlocks * sizeof(Block);
static_assert(AreaSize == 32768, "the warm area fills the DTCM");

/** The block-synchronisation area holds one mutex for each block. */
constexpr std::size_t SyncSlotSize = sizeof(pthread_mutex_t);
constexpr std::size_t SyncAreaSize = NumberOfBlocks * SyncSlotSize;

#if defined(__arm__)
static_assert(SyncSlotSize == 24 && SyncAreaSize == 768, "as all programs of the board have it");
#endif

// Callers lock the process-shared mutexes through the interface of std::mutex.
static_assert(sizeof(std::mutex) == sizeof(pthread_mutex_t) &&
                  alignof(std::mutex) == alignof(pthread_mutex_t),
              "a std::mutex is a pthread_mutex_t and nothing else");

} // namespace dtcm
} // namespace bsp
} // namespace os

#endif
