#include "board/SimulatedBoard.h"

#include "Led.h"
#include "board/Board.h"
#include "report/Failure.h"

#include <cerrno>

#include <fcntl.h>

namespace
{

using Path = std::filesystem::path;

Failure notSimulated(const Path& name, const std::string& why)
{
    return Failure("only a simulated board can be restarted: '" + name.string() + "' " + why);
}

Failure cannotWrite(const Path& name)
{
    return {"cannot write '" + name.string() + "'", errno};
}

/** Why this is no file of a board's; empty when it is one. */
std::string objection(const struct stat& status, std::size_t size)
{
    if (!S_ISREG(status.st_mode) || static_cast<std::size_t>(status.st_size) < size) {
        return size == 0 ? "is no file" : "is no file of " + std::to_string(size) + " bytes";
    }
    return status.st_nlink > 1 ? "has another name, too" : "";
}

void requireFile(const struct stat& status, const Path& name, std::size_t size)
{
    const std::string why = objection(status, size);
    if (!why.empty()) {
        throw notSimulated(name, why);
    }
}

/** Opens a file, when there is one. It must have at least this size. */
BoardFile findFile(const Directory& directory, const std::string& entry, std::size_t size)
{
    BoardFile file{syscalls::FileDescriptor(), directory.nameOf(entry)};
    const std::optional<struct stat> found = directory.status(entry);
    if (!found) {
        return file;
    }
    // Looked at before it is opened, as to open some things has effects; and after, as it counts.
    requireFile(*found, file.name, size);
    file.descriptor = directory.openEntry(entry, O_WRONLY);
    struct stat opened
    {};
    if (!file.descriptor.isOpen() || ::fstat(file.descriptor.get(), &opened) != 0) {
        throw errno == ELOOP ? notSimulated(file.name, "is no file") : cannotWrite(file.name);
    }
    requireFile(opened, file.name, size);
    return file;
}

BoardFile openFile(const Directory& directory, const std::string& entry, std::size_t size)
{
    BoardFile file = findFile(directory, entry, size);
    if (!file.descriptor.isOpen()) {
        throw notSimulated(file.name, "is no file of " + std::to_string(size) + " bytes");
    }
    return file;
}

std::optional<Directory> findPart(const Directory& directory, const std::string& entry)
{
    const std::optional<struct stat> status = directory.status(entry);
    if (status && !S_ISDIR(status->st_mode)) {
        throw notSimulated(directory.nameOf(entry), "is no directory");
    }
    return status ? directory.find(entry) : std::nullopt;
}

BoardLed findLed(const std::optional<Directory>& leds, const std::string& name)
{
    BoardLed led{name, leds ? findPart(*leds, name) : std::nullopt, {}, {}};
    if (led.directory) {
        led.trigger = findFile(*led.directory, hardware::LedTriggerFile, 0);
        led.state = findFile(*led.directory, hardware::LedStateFile, 0);
    }
    return led;
}

} // namespace

SimulatedBoard SimulatedBoard::open(const Directory& board)
{
    SimulatedBoard parts{openFile(board, entry::Dtcm, Board::DtcmSize),
                         openFile(board, entry::Registers, Board::RegistersSize),
                         findPart(board, entry::SharedMemory),
                         findPart(board, entry::TemporaryFiles),
                         findPart(board, entry::Leds),
                         {}};
    for (unsigned int number = 0; number < NoOfLeds; ++number) {
        parts.led.push_back(findLed(parts.leds, Led_objectToName(number)));
    }
    return parts;
}
