#include "evidence/BoardFiles.h"

std::optional<std::string> boardFile(const std::string& /*entry*/)
{
    return std::nullopt;
}
