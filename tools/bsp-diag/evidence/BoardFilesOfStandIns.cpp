#include "evidence/BoardFiles.h"

#include "BoardDirectory.h"

std::optional<std::string> boardFile(const std::string& entry)
{
    return boarddirectory::entryPath(entry);
}
