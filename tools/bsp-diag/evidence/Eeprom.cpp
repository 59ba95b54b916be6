#include "evidence/Eeprom.h"

#include "Bsp.h"

#include <algorithm>

namespace
{

EepromAnswer watched;

} // namespace

// The layer's own reading of the EEPROM is watched: the linker leads its call through here.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" int __real_Bsp_readHardwareCode(std::uint8_t* code);

extern "C" int __wrap_Bsp_readHardwareCode(std::uint8_t* code)
{
    watched.result = __real_Bsp_readHardwareCode(code);
    if (watched.result == 0) {
        std::copy_n(code, watched.code.size(), watched.code.begin());
    }
    return watched.result;
}
// NOLINTEND(bugprone-reserved-identifier)

const EepromAnswer& eepromAnswer()
{
    static_cast<void>(Bsp_getNxuHwVariant());
    return watched;
}

Reading<std::string> hardwareCode()
{
    const EepromAnswer& answer = eepromAnswer();
    if (answer.result != 0) {
        return Reading<std::string>::unknown("the EEPROM cannot be read: the library answered " +
                                             std::to_string(answer.result));
    }
    return std::string(answer.code.begin(), answer.code.end());
}
