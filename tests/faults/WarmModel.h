/**
 * @file
 * @brief What users of the store have to find, worked out from the bytes that are left.
 */
#ifndef TESTS_FAULTS_WARMMODEL_H
#define TESTS_FAULTS_WARMMODEL_H

#include "SharedState.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace faults
{

enum ResetCause : std::uint32_t
{
    Cold,
    Warm,
    Watchdog,
    Unknown
};

constexpr std::size_t AreaSize = 32768;
constexpr std::size_t BlockSize = 1024;
constexpr std::size_t NameSize = 16;
constexpr unsigned int ObjectSize = 8;
const std::string OldData = "old data";

/** An object OLD, and a free block behind it with something left in it. */
std::string firstArea();

/** The bytes without NUL, which ends a text. */
std::string printable(std::string bytes);

/** What a process that is there already answers when it is asked for everything. */
std::string modelAnswers(const SharedState& state);

/** What a process answers that starts there after a restart of that kind. */
std::string modelAnswersOfNewcomer(SharedState state, ResetCause cause);

/** The state but for the number of the thread that holds the slot id's mutex. */
SharedState withoutOwner(SharedState state);

} // namespace faults

#endif
