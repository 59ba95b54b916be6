#include "board/Board.h"

#include "board/Files.h"
#include "report/Failure.h"

#include <algorithm>

Board Board::at(const std::filesystem::path& directory)
{
    std::error_code error;
    if (!std::filesystem::is_directory(directory, error)) {
        throw Failure("no board '" + directory.string() + "'", error ? error.value() : ENOTDIR);
    }
    return Board(directory);
}

std::uint32_t resetCauseOf(const Board& board)
{
    std::uint32_t cause = 0;
    const std::string bytes = files::readExactly(board.registers(), sizeof cause);
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(&cause));
    return cause;
}
