/**
 * @file
 * @brief What every board has, by the names and sizes under which software finds it.
 *
 * The layer asks for these things, the stand-ins serve them and the simulator makes them. A board's
 * own headers need not know them: this is no part of the platform libraries' interfaces.
 */
#ifndef PLATFORM_HARDWARE_HARDWARE_H
#define PLATFORM_HARDWARE_HARDWARE_H

#include <cstddef>

namespace hardware
{

// The hardware code's place, as e2prom_data_read takes it.
constexpr int BaseBoardEeprom = 5;
constexpr int HardwareCodeArea = 1;
constexpr std::size_t HardwareCodeSize = 8;

// Elements of hwVariants.
constexpr std::size_t DefaultVariant = 14; /**< Of boards whose EEPROM cannot be read. */
constexpr std::size_t FallbackVariant = 0; /**< Of boards whose hardware code no variant has. */

/** Device of the memory that keeps its contents over a warm restart. */
constexpr const char* WarmAreaDevice = "top.dtcm0";
constexpr std::size_t WarmAreaSize = 32768;

/** Device of the system control registers, on platform Nxu4. */
constexpr const char* RegistersDevice = "top.sys_ctrl0";
constexpr std::size_t ResetCauseOffset = 0;

/** Left by the start-up of other platforms' boards after a cold restart. */
constexpr const char* ColdRestartMarker = "/tmp/restart_cold";

// The LEDs of the kernel's LED class: the files of each, and the trigger that gives it its state.
constexpr const char* LedsDirectory = "/sys/class/leds";
constexpr const char* LedTriggerFile = "trigger";
constexpr const char* LedTrigger = "korvanta";
constexpr const char* LedStateFile = "korvanta_state";

} // namespace hardware

#endif
