#include "board/BoardState.h"

#include "Led.h"
#include "board/Board.h"
#include "board/Files.h"
#include "board/SimulatedBoard.h"
#include "board/StagingDirectory.h"
#include "report/Failure.h"

#include <cerrno>
#include <cstdint>

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using os::bsp::ResetType;

/** As the kernel shows an LED's triggers when the one with the state has been chosen. */
std::string chosenLedTrigger()
{
    return std::string("none [") + hardware::LedTrigger + "]\n";
}

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

void replaceOrCreate(const Directory& directory, const char* entry, const BoardFile& file,
                     const std::string& contents)
{
    if (file.descriptor.isOpen()) {
        files::replace(file.descriptor, file.name, contents);
    } else {
        directory.createFile(entry, contents);
    }
}

void resetLed(const Directory& leds, BoardLed& led)
{
    if (!led.directory) {
        led.directory = leds.make(led.name);
    }
    replaceOrCreate(*led.directory, hardware::LedTriggerFile, led.trigger, chosenLedTrigger());
    replaceOrCreate(*led.directory, hardware::LedStateFile, led.state,
                    std::string(Led_stateObjectToStateName(Led_SteadyOff)) + '\n');
}

void resetLeds(const Directory& board, SimulatedBoard& parts)
{
    if (!parts.leds) {
        parts.leds = board.make(entry::Leds);
    }
    for (BoardLed& led : parts.led) {
        resetLed(*parts.leds, led);
    }
}

void emptyOrMake(const Directory& board, const char* entry, std::optional<Directory>& directory)
{
    if (directory) {
        removeContents(*directory);
    } else {
        directory = board.makeShared(entry);
    }
}

/** What the board's own start-up does. */
void startUp(const SimulatedBoard& parts, ResetType cause)
{
    if (cause == ResetType::Cold) {
        parts.temporaryFiles->createFile(entry::coldMarker(), "");
    }
}

/** Root shares a board with others by what it says, not by its umask. */
void keepOthersFromWriting()
{
    if (::geteuid() == 0) {
        ::umask(::umask(0) | S_IWGRP | S_IWOTH);
    }
}

} // namespace

void createBoard(const std::filesystem::path& place, const std::string& eeprom,
                 const std::function<void(const Directory&)>& finish)
{
    keepOthersFromWriting();
    StagingDirectory staging(place);
    const Directory& board = staging.directory();
    board.createFile(entry::Eeprom, eeprom);
    board.createFile(entry::Dtcm, std::string(Board::DtcmSize, '\0'));
    board.createFile(entry::Registers, std::string(Board::RegistersSize, '\0'));
    restartBoard(board, ResetType::Cold);
    finish(board);
    staging.publish();
}

void restartBoard(const Directory& board, ResetType cause)
{
    SimulatedBoard parts = SimulatedBoard::open(board);
    emptyOrMake(board, entry::SharedMemory, parts.sharedMemory);
    emptyOrMake(board, entry::TemporaryFiles, parts.temporaryFiles);
    resetLeds(board, parts);
    if (cause == ResetType::Cold) {
        files::write(parts.dtcm.descriptor, parts.dtcm.name, randomBytes(Board::DtcmSize));
    }
    files::write(parts.registers.descriptor, parts.registers.name, registerBytes(cause));
    startUp(parts, cause);
}
