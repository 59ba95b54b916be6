#include "evidence/BoardFiles.h"

#include "BoardDirectory.h"
#include "Entries.h"

std::optional<std::string> boardFile(const std::string& entry)
{
    return boarddirectory::entryPath(entry);
}

std::optional<std::string> eepromFile()
{
    return boardFile(boarddirectory::entry::Eeprom);
}

std::optional<std::string> settingsFile()
{
    return boardFile(boarddirectory::entry::Settings);
}
