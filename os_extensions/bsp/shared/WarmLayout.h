/**
 * @file
 * @brief What is where in the warm area, for the layer and for the simulator. Programs of all
 * versions share the area: nothing in here can change.
 */
#ifndef BSP_SHARED_WARMLAYOUT_H
#define BSP_SHARED_WARMLAYOUT_H

#include "Hardware.h"

#include <cstddef>
#include <cstdint>

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

/** The object with the slot id, and what is in it first. */
constexpr const char* SlotObject = "SLOT";
using SlotId = std::int32_t;
constexpr SlotId SlotIdNotSet = -1;

} // namespace os::bsp::dtcm

#endif
