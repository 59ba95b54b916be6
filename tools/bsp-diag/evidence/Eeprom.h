#ifndef TOOLS_DIAG_EVIDENCE_EEPROM_H
#define TOOLS_DIAG_EVIDENCE_EEPROM_H

#include "Reading.h"

#include <array>
#include <cstdint>
#include <string>

/** What the base board library answered when it was asked for the hardware code. */
struct EepromAnswer
{
    int result = 0; /**< 0, or the library's number of what failed. */
    std::array<std::uint8_t, 8> code{};
};

/** The answer that the layer got; the process reads the EEPROM once. */
const EepromAnswer& eepromAnswer();

/** The code's bytes. */
Reading<std::string> hardwareCode();

#endif
