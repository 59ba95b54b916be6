#ifndef TOOLS_DIAG_EVIDENCE_BOARDFILES_H
#define TOOLS_DIAG_EVIDENCE_BOARDFILES_H

#include "Text.h"

#include <optional>
#include <string>

/**
 * The file behind what the platform's libraries serve, by its name in a board directory; nothing
 * where the libraries are the board's own and do not say.
 */
std::optional<std::string> boardFile(const std::string& entry);

/** The same of the EEPROM and of the settings. */
std::optional<std::string> eepromFile();
std::optional<std::string> settingsFile();

/** The file, or else the name, in words: a path can have any bytes. */
inline std::string placeOf(const std::string& entry)
{
    return printable(boardFile(entry).value_or(entry));
}

#endif
