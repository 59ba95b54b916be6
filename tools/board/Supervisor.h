#ifndef TOOLS_BOARD_SUPERVISOR_H
#define TOOLS_BOARD_SUPERVISOR_H

#include <filesystem>
#include <string>
#include <vector>

/**
 * Runs a command through bubblewrap and waits for its end.
 *
 * Signals that are sent to this process go to the command. Where a signal of the terminal ends
 * bubblewrap but not the command, the command is waited for all the same.
 *
 * @param bubblewrap  the program
 * @param words       its words; the command's words come last
 * @return the command's exit status, 128 + N when signal N ended it
 */
int superviseBubblewrap(const std::filesystem::path& bubblewrap,
                        const std::vector<std::string>& words);

#endif
