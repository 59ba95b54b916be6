/**
 * @file
 * @brief Brings boards into the state that they have after a restart. All functions throw Failure.
 */
#ifndef TOOLS_SIMULATOR_BOARD_BOARDSTATE_H
#define TOOLS_SIMULATOR_BOARD_BOARDSTATE_H

#include "BspEnumerations.h"
#include "board/Directory.h"

#include <functional>

/**
 * Makes a board with this EEPROM, in the state after a cold restart.
 *
 * The board is there as a whole or not at all; nothing but an empty directory is replaced.
 *
 * @param finish  what else is done to the board before it is there
 */
void createBoard(
    const std::filesystem::path& place, const std::string& eeprom,
    const std::function<void(const Directory&)>& finish = [](const Directory&) {});

/** Does to a board what a restart does. Only simulated boards can be restarted. */
void restartBoard(const Directory& board, os::bsp::ResetType cause);

#endif
