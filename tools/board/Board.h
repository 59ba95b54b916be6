#ifndef TOOLS_BOARD_BOARD_H
#define TOOLS_BOARD_BOARD_H

#include <cstddef>
#include <filesystem>
#include <string>

/** A board directory: where each of its entries is. */
class Board
{
public:
    static constexpr std::size_t EepromSize = 8;
    static constexpr std::size_t DtcmSize = 32768;
    static constexpr std::size_t RegistersSize = 4096;

    /** The board in a directory, which must exist. @throws Failure */
    static Board at(const std::filesystem::path& directory);

    /** The board in a directory that is being made. */
    explicit Board(std::filesystem::path directory) : m_directory(std::move(directory)) {}

    const std::filesystem::path& directory() const { return m_directory; }
    std::filesystem::path eeprom() const { return m_directory / "eeprom"; }
    std::filesystem::path dtcm() const { return m_directory / "top.dtcm0"; }
    /** The system control registers; the first is the cause of the last restart. */
    std::filesystem::path registers() const { return m_directory / "top.sys_ctrl0"; }
    std::filesystem::path store() const { return m_directory / "settings"; }
    /** What a program on the board sees as /dev/shm. */
    std::filesystem::path sharedMemory() const { return m_directory / "shm"; }
    /** What a program on the board sees as /tmp. */
    std::filesystem::path temporaryFiles() const { return m_directory / "tmp"; }
    /** The mark that a board's start-up leaves after a cold restart. */
    std::filesystem::path coldMarker() const { return temporaryFiles() / "restart_cold"; }
    /** What a program on the board sees as /sys/class/leds. */
    std::filesystem::path leds() const { return m_directory / "leds"; }
    std::filesystem::path ledTrigger(const std::string& led) const
    {
        return leds() / led / "trigger";
    }
    std::filesystem::path ledState(const std::string& led) const
    {
        return leds() / led / "korvanta_state";
    }

private:
    std::filesystem::path m_directory;
};

#endif
