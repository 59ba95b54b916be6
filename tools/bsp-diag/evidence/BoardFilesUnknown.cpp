#include "evidence/BoardFiles.h"

std::optional<std::string> boardFile(const std::string& /*entry*/)
{
    return std::nullopt;
}

std::optional<std::string> eepromFile()
{
    return std::nullopt;
}

std::optional<std::string> settingsFile()
{
    return std::nullopt;
}
