/**
 * @file
 * @brief Runs commands on boards.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_RUN_H
#define TOOLS_SIMULATOR_RUNNING_RUN_H

#include "board/Board.h"

#include <filesystem>
#include <string>
#include <vector>

/** What separates a board from the host. */
enum class Isolation
{
    Automatic, /**< bubblewrap; where it is missing or refused, proot. */
    Bubblewrap,
    Proot,
    None /**< Nothing: the command has the board's directory, but the host's /dev/shm, /tmp, /sys.
          */
};

struct RunOptions
{
    Isolation isolation = Isolation::Automatic;
    /** Paths of the host that stay visible where the board has its own directories. */
    std::vector<std::filesystem::path> visible;
};

/**
 * Runs a command on a board and waits for its end.
 *
 * @param command  the command with its arguments; the first names its file as in a shell
 * @return the command's exit status: 128 + N when signal N ended it, 127 when there is no such
 *         command, 126 when it cannot be run, 125 when nothing here can run it
 * @throws Failure when the board cannot run any command
 */
int runOnBoard(const Board& board, const std::vector<std::string>& command,
               const RunOptions& options = {});

#endif
