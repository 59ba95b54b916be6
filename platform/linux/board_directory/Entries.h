/**
 * @file
 * @brief The names of what is in a board directory, but for the devices, which are named by the
 * programs that open them.
 */
#ifndef PLATFORM_LINUX_BOARD_DIRECTORY_ENTRIES_H
#define PLATFORM_LINUX_BOARD_DIRECTORY_ENTRIES_H

namespace boarddirectory::entry
{

constexpr const char* Eeprom = "eeprom";
constexpr const char* Settings = "settings";
/** What a program on the board sees as /dev/shm. */
constexpr const char* SharedMemory = "shm";
/** What a program on the board sees as /tmp. */
constexpr const char* TemporaryFiles = "tmp";
/** What a program on the board sees as /sys/class/leds. */
constexpr const char* Leds = "leds";

} // namespace boarddirectory::entry

#endif
