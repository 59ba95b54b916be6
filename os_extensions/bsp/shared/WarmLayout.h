/**
 * @file
 * @brief What is where in the warm area, for the layer and the tools. Programs of all
 * versions share the area: nothing in here can change.
 */
#ifndef BSP_SHARED_WARMLAYOUT_H
#define BSP_SHARED_WARMLAYOUT_H

#include "Hardware.h"

#include <cstddef>
#include <cstdint>

#include <pthread.h>

namespace os::bsp::dtcm
{

/** Semaphore of those who use the area. */
constexpr const char* SemaphoreName = "/DtcmDbSharedSem";

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
static_assert(AreaSize == hardware::WarmAreaSize, "the blocks fill the area");

/** Memory with a mutex for each block. */
constexpr const char* SyncAreaName = "/DtcmSync";
constexpr std::size_t SyncSlotSize = sizeof(pthread_mutex_t);
constexpr std::size_t SyncAreaSize = NumberOfBlocks * SyncSlotSize;

/** The object with the slot id. */
constexpr const char* SlotObjectName = "SLOT";

struct SlotObject
{
    std::int32_t slotId;
    pthread_mutex_t mutex; /**< Of all processes, around the slot id. */
};

constexpr std::int32_t SlotIdNotSet = -1;

#if defined(__arm__)
static_assert(SyncSlotSize == 24 && SyncAreaSize == 768 && sizeof(SlotObject) == 28 &&
                  offsetof(SlotObject, mutex) == 4,
              "as all programs of the board have it");
#endif

} // namespace os::bsp::dtcm

#endif
