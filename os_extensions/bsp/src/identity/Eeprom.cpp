#include "identity/Eeprom.h"

#include "BaseBoard.h"
#include "Hardware.h"

int Bsp_readHardwareCode(std::uint8_t* code)
{
    return e2prom_data_read(hardware::BaseBoardEeprom, hardware::HardwareCodeArea, code);
}
