/**
 * @file
 * @brief Runs commands on boards.
 */
#ifndef TOOLS_BOARD_RUN_H
#define TOOLS_BOARD_RUN_H

#include "Board.h"

#include <string>
#include <vector>

/**
 * Runs a command on a board and waits for its end.
 *
 * @param command  the command's words; the first names its file as in a shell
 * @return the command's exit status: 128 + N when signal N ended it, 127 when there is no such
 *         command, 126 when it cannot be run
 * @throws Failure when the board cannot run any command
 */
int runOnBoard(const Board& board, const std::vector<std::string>& command);

#endif
