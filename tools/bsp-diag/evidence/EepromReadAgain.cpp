// A board's own library may be inline functions, which nothing can watch: it is asked once more.

#include "evidence/Eeprom.h"

#include "BaseBoard.h"
#include "Hardware.h"

const EepromAnswer& eepromAnswer()
{
    static const EepromAnswer answer = [] {
        EepromAnswer result;
        result.result = e2prom_data_read(hardware::BaseBoardEeprom, hardware::HardwareCodeArea,
                                         result.code.data());
        return result;
    }();
    return answer;
}
