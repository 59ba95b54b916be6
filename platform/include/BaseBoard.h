/**
 * @file
 * @brief Interface of the base board library: EEPROM access.
 */
#ifndef PLATFORM_BASEBOARD_H
#define PLATFORM_BASEBOARD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C"
{
#endif

    /**
     * Reads the board's hardware code from the EEPROM.
     *
     * @param device  5 selects the base board's EEPROM
     * @param area    1 selects the hardware code
     * @param buffer  room for at least eight bytes; the hardware code goes to the first eight
     * @return 0 on success, any other number on failure
     */
    int e2prom_data_read(int device, int area, uint8_t* buffer);

#ifdef __cplusplus
}
#endif

#endif
