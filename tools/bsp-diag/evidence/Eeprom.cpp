#include "evidence/Eeprom.h"

Reading<std::string> hardwareCode()
{
    const EepromAnswer& answer = eepromAnswer();
    if (answer.result != 0) {
        return Reading<std::string>::unknown("the EEPROM cannot be read: the library answered " +
                                             std::to_string(answer.result));
    }
    return std::string(answer.code.begin(), answer.code.end());
}
