#ifndef TOOLS_SIMULATOR_BOARD_BOARD_H
#define TOOLS_SIMULATOR_BOARD_BOARD_H

#include "Entries.h"
#include "Hardware.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

/** The names in a board's directory. */
namespace entry
{
using namespace boarddirectory::entry;
constexpr const char* Dtcm = hardware::WarmAreaDevice;
constexpr const char* Registers = hardware::RegistersDevice;
/** Among the temporary files. */
inline std::string coldMarker()
{
    return std::filesystem::path(hardware::ColdRestartMarker).filename();
}
} // namespace entry

/** A board directory: where each of its entries is. */
class Board
{
public:
    static constexpr std::size_t EepromSize = hardware::HardwareCodeSize;
    static constexpr std::size_t DtcmSize = hardware::WarmAreaSize;
    static constexpr std::size_t RegistersSize = 4096;

    /** The board in a directory, which must exist. @throws Failure */
    static Board at(const std::filesystem::path& directory);

    explicit Board(std::filesystem::path directory) : m_directory(std::move(directory)) {}

    const std::filesystem::path& directory() const { return m_directory; }
    std::filesystem::path eeprom() const { return m_directory / entry::Eeprom; }
    std::filesystem::path dtcm() const { return m_directory / entry::Dtcm; }
    std::filesystem::path registers() const { return m_directory / entry::Registers; }
    std::filesystem::path store() const { return m_directory / entry::Settings; }
    std::filesystem::path sharedMemory() const { return m_directory / entry::SharedMemory; }
    std::filesystem::path temporaryFiles() const { return m_directory / entry::TemporaryFiles; }
    std::filesystem::path coldMarker() const { return temporaryFiles() / entry::coldMarker(); }
    std::filesystem::path leds() const { return m_directory / entry::Leds; }
    std::filesystem::path ledState(const std::string& led) const
    {
        return leds() / led / hardware::LedStateFile;
    }

private:
    std::filesystem::path m_directory;
};

/** The cause of the last restart, from a board's registers. @throws Failure */
std::uint32_t resetCauseOf(const Board& board);

#endif
