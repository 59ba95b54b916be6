/**
 * @file
 * @brief A capsule: what the layer can see of a board, in one document. docs/diagnosis.md describes
 *        it; `bsp-diag capture` writes it, `bsp-board create --capsule` makes a board of it.
 */
#ifndef TOOLS_COMMON_CAPSULE_H
#define TOOLS_COMMON_CAPSULE_H

#include "BoardFacts.h"
#include "Reading.h"

#include <cstdint>
#include <string>
#include <vector>

namespace capsule
{

/** The files of an LED. */
struct Led
{
    std::string name;
    Reading<std::string> trigger;
    Reading<std::string> state;
};

/** A file in the shared memory. */
struct SharedFile
{
    std::string name;
    std::uint64_t size;
    unsigned int mode; /**< The permissions. */
    unsigned int user;
};

/** What makes the board; what is not known has its reason. */
struct Contents
{
    Reading<std::string> eeprom;
    Reading<std::string> warmArea;
    std::string warmAreaTaken; /**< Whether under its lock, in words. */
    Reading<std::uint32_t> resetCause;
    bool coldMarker = false;
    Reading<std::string> settings; /**< The text of the file. */
    std::vector<Led> leds;
    std::vector<SharedFile> sharedFiles;
    Reading<std::uint32_t> semaphore; /**< Its value. */
    std::vector<std::string> heldMutexes;
};

Json jsonOf(const Contents& contents);

/**
 * The contents of a capsule's text.
 * @throws std::runtime_error when it is none, or one of another version
 */
Contents parse(const std::string& text);

} // namespace capsule

#endif
