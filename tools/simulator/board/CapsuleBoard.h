#ifndef TOOLS_SIMULATOR_BOARD_CAPSULEBOARD_H
#define TOOLS_SIMULATOR_BOARD_CAPSULEBOARD_H

#include "Capsule.h"

#include <filesystem>
#include <string>
#include <vector>

/**
 * Makes a board of a capsule, on which every query answers what it answered on the other.
 *
 * Locks are made anew, in the way of this machine: the semaphore with the value that it had, all
 * mutexes free.
 *
 * @return what could not be carried over, in words
 * @throws Failure
 */
std::vector<std::string> createBoardOf(const std::filesystem::path& place,
                                       const capsule::Contents& contents);

#endif
