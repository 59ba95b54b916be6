#ifndef TOOLS_SIMULATOR_BOARD_BOARD_H
#define TOOLS_SIMULATOR_BOARD_BOARD_H

#include <cstddef>
#include <filesystem>
#include <string>

/** The names in a board's directory. */
namespace entry
{
constexpr const char* Eeprom = "eeprom";
constexpr const char* Dtcm = "top.dtcm0";
/** The system control registers; the first is the cause of the last restart. */
constexpr const char* Registers = "top.sys_ctrl0";
constexpr const char* Store = "settings";
/** What a program on the board sees as /dev/shm. */
constexpr const char* SharedMemory = "shm";
/** What a program on the board sees as /tmp. */
constexpr const char* TemporaryFiles = "tmp";
/** The mark in /tmp that a board's start-up leaves after a cold restart. */
constexpr const char* ColdMarker = "restart_cold";
/** What a program on the board sees as /sys/class/leds. */
constexpr const char* Leds = "leds";
constexpr const char* LedTrigger = "trigger";
constexpr const char* LedState = "korvanta_state";
} // namespace entry

/** A board directory: where each of its entries is. */
class Board
{
public:
    static constexpr std::size_t EepromSize = 8;
    static constexpr std::size_t DtcmSize = 32768;
    static constexpr std::size_t RegistersSize = 4096;

    /** The board in a directory, which must exist. @throws Failure */
    static Board at(const std::filesystem::path& directory);

    explicit Board(std::filesystem::path directory) : m_directory(std::move(directory)) {}

    const std::filesystem::path& directory() const { return m_directory; }
    std::filesystem::path eeprom() const { return m_directory / entry::Eeprom; }
    std::filesystem::path dtcm() const { return m_directory / entry::Dtcm; }
    std::filesystem::path registers() const { return m_directory / entry::Registers; }
    std::filesystem::path store() const { return m_directory / entry::Store; }
    std::filesystem::path sharedMemory() const { return m_directory / entry::SharedMemory; }
    std::filesystem::path temporaryFiles() const { return m_directory / entry::TemporaryFiles; }
    std::filesystem::path coldMarker() const { return temporaryFiles() / entry::ColdMarker; }
    std::filesystem::path leds() const { return m_directory / entry::Leds; }
    std::filesystem::path ledState(const std::string& led) const
    {
        return leds() / led / entry::LedState;
    }

private:
    std::filesystem::path m_directory;
};

#endif
