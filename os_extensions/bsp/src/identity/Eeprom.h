#ifndef BSP_SRC_IDENTITY_EEPROM_H
#define BSP_SRC_IDENTITY_EEPROM_H

#include <cstdint>

/**
 * Reads the eight bytes of the hardware code.
 *
 * A function of its own, and not of libbsp's interface: the linker of a program that has the layer
 * in it can lead calls of it elsewhere, where the platform's function may be an inline one.
 *
 * @return what the platform's e2prom_data_read answers
 */
extern "C" int Bsp_readHardwareCode(std::uint8_t* code);

#endif
