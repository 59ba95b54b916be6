#include "BoardState.h"

#include "BoardDraft.h"
#include "Failure.h"
#include "Files.h"
#include "Led.h"

#include <cstdint>

#include <sys/random.h>

namespace
{

namespace fs = std::filesystem;
using os::bsp::ResetType;

// As the kernel shows an LED whose trigger has been chosen, and what a reset leaves on it.
constexpr const char* LedTrigger = "none [korvanta]\n";

std::string randomBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    std::size_t have = 0;
    while (have < size) {
        const ssize_t count = ::getrandom(bytes.data() + have, size - have, 0);
        if (count > 0) {
            have += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw Failure("cannot get random bytes", errno);
        }
    }
    return bytes;
}

std::string registerBytes(ResetType cause)
{
    const auto word = static_cast<std::uint32_t>(cause);
    return {reinterpret_cast<const char*>(&word), sizeof word};
}

void resetLeds(const Board& board)
{
    for (unsigned int led = 0; led < NoOfLeds; ++led) {
        const std::string name = Led_objectToName(led);
        std::error_code error;
        fs::create_directories(board.leds() / name, error);
        if (error) {
            throw Failure("cannot create '" + (board.leds() / name).string() + "'", error.value());
        }
        files::replace(board.ledTrigger(name), LedTrigger);
        files::replace(board.ledState(name),
                       std::string(Led_stateObjectToStateName(Led_SteadyOff)) + '\n');
    }
}

/** Links could lead a restart to what is no board's. */
void requirePlainFile(const fs::path& path, std::size_t size)
{
    std::error_code error;
    if (fs::symlink_status(path, error).type() != fs::file_type::regular ||
        fs::file_size(path, error) < size || error)
    {
        throw Failure("only a simulated board can be restarted: '" + path.string() +
                      "' is no file of " + std::to_string(size) + " bytes");
    }
}

void requireDirectoryOrNothing(const fs::path& path)
{
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path, error).type();
    if (type != fs::file_type::directory && type != fs::file_type::not_found) {
        throw Failure("only a simulated board can be restarted: '" + path.string() +
                      "' is no directory");
    }
}

void requireFileOrNothing(const fs::path& path)
{
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path, error).type();
    if (type != fs::file_type::regular && type != fs::file_type::not_found) {
        throw Failure("only a simulated board can be restarted: '" + path.string() +
                      "' is no file");
    }
}

void requireSimulated(const Board& board)
{
    requirePlainFile(board.dtcm(), Board::DtcmSize);
    requirePlainFile(board.registers(), Board::RegistersSize);
    for (const fs::path& path : {board.sharedMemory(), board.temporaryFiles(), board.leds()}) {
        requireDirectoryOrNothing(path);
    }
    for (unsigned int led = 0; led < NoOfLeds; ++led) {
        const std::string name = Led_objectToName(led);
        requireDirectoryOrNothing(board.leds() / name);
        requireFileOrNothing(board.ledTrigger(name));
        requireFileOrNothing(board.ledState(name));
    }
}

void emptyOrMake(const fs::path& directory)
{
    if (fs::exists(directory)) {
        files::empty(directory);
    } else {
        files::makeSharedDirectory(directory);
    }
}

/** What the board's own start-up does. */
void startUp(const Board& board, ResetType cause)
{
    if (cause == ResetType::Cold) {
        files::create(board.coldMarker(), "");
    }
}

} // namespace

void createBoard(const fs::path& directory, const std::string& eeprom)
{
    BoardDraft draft(directory);
    const Board board(draft.path());
    files::create(board.eeprom(), eeprom);
    files::create(board.dtcm(), std::string(Board::DtcmSize, '\0'));
    files::create(board.registers(), std::string(Board::RegistersSize, '\0'));
    restartBoard(board, ResetType::Cold);
    draft.publish();
}

void restartBoard(const Board& board, ResetType cause)
{
    requireSimulated(board);
    emptyOrMake(board.sharedMemory());
    emptyOrMake(board.temporaryFiles());
    resetLeds(board);
    if (cause == ResetType::Cold) {
        files::overwriteStart(board.dtcm(), randomBytes(Board::DtcmSize));
    }
    files::overwriteStart(board.registers(), registerBytes(cause));
    startUp(board, cause);
}
