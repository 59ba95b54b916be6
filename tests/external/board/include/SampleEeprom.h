/* The sample board's own way to its EEPROM. */
#ifndef SAMPLE_EEPROM_H
#define SAMPLE_EEPROM_H

#include <stdint.h>

extern "C" bool sample_eeprom(unsigned int offset, uint8_t* to, unsigned int size);

#endif
