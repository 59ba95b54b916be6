/**
 * @file
 * @brief Where the board that the stand-ins serve is found.
 *
 * A board is a directory; docs/platform.md describes its entries.
 */
#ifndef PLATFORM_LINUX_BOARD_DIRECTORY_BOARDDIRECTORY_H
#define PLATFORM_LINUX_BOARD_DIRECTORY_BOARDDIRECTORY_H

#include <string>

namespace boarddirectory
{

/** Variable of the environment that gives the board directory. */
constexpr const char* Variable = "BSP_BOARD_DIR";

/**
 * Path of the board directory: `$BSP_BOARD_DIR`, else the first directory that exists of
 * `$XDG_STATE_HOME/bsp/board`, `$HOME/.local/state/bsp/board` and `/var/lib/bsp/board`. When none
 * does, it is the last for root, and the first of them for others. An empty variable counts as
 * unset; a program with raised rights heeds none and has `/var/lib/bsp/board`.
 *
 * The environment is looked at anew by each call. The directory need not exist.
 */
std::string path();

/** Path of an entry of the board directory, such as "eeprom". */
std::string entryPath(const std::string& name);

/** Whether a text can name an entry: not empty, not "." or "..", neither "/" nor NUL in it. */
bool isEntryName(const std::string& name);

} // namespace boarddirectory

#endif
