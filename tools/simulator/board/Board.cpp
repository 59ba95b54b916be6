#include "board/Board.h"

#include "report/Failure.h"

Board Board::at(const std::filesystem::path& directory)
{
    std::error_code error;
    if (!std::filesystem::is_directory(directory, error)) {
        throw Failure("no board '" + directory.string() + "'", error ? error.value() : ENOTDIR);
    }
    return Board(directory);
}
