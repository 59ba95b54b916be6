#ifndef TOOLS_SIMULATOR_BOARD_SIMULATEDBOARD_H
#define TOOLS_SIMULATOR_BOARD_SIMULATEDBOARD_H

#include "board/Directory.h"

#include <string>
#include <vector>

/** A file of a board, open for writing. */
struct BoardFile
{
    syscalls::FileDescriptor descriptor; /**< Not open when there is no such file yet. */
    std::filesystem::path name;
};

/** An LED's directory with its two files. */
struct BoardLed
{
    std::string name;
    std::optional<Directory> directory;
    BoardFile trigger;
    BoardFile state;
};

/**
 * What a restart changes on a simulated board, all open.
 *
 * Whatever others put into the places later is left alone.
 */
struct SimulatedBoard
{
    BoardFile dtcm;
    BoardFile registers;
    std::optional<Directory> sharedMemory;
    std::optional<Directory> temporaryFiles;
    std::optional<Directory> leds;
    std::vector<BoardLed> led;

    /** @throws Failure for a board with parts that are not, or might not be, its own */
    static SimulatedBoard open(const Directory& board);
};

#endif
