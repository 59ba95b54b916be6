/**
 * @file
 * @brief Where the board that the stand-ins serve is found.
 *
 * A board is a directory; docs/platform.md describes its entries.
 */
#ifndef PLATFORM_LINUX_BOARD_BOARDDIRECTORY_H
#define PLATFORM_LINUX_BOARD_BOARDDIRECTORY_H

#include <string>

namespace boarddirectory
{

/**
 * Path of the board directory: `$BSP_BOARD_DIR`, else `$XDG_STATE_HOME/bsp/board`, else
 * `$HOME/.local/state/bsp/board`, else `/var/lib/bsp/board`. An empty variable counts as unset.
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
