/**
 * @file
 * @brief The names for C. They are constant: also while static objects are made they are there.
 */
#include "BspEnumerations.h"
#include "ConstantNames.h"

namespace os::bsp
{

namespace
{

#define BSP_CONSTANT_NAMES(ENUM, TABLE, ROWS)                                                      \
    constexpr ConstantName TABLE##OfC[] = {ROWS(BSP_NAME_ROW, ENUM) BSP_NAME_ROW(ENUM, EndOfList)};
BSP_ENUMERATIONS(BSP_CONSTANT_NAMES)

} // namespace

} // namespace os::bsp

const char* Bsp_productIdName(int productId)
{
    return os::bsp::nameOf(os::bsp::productIdNamesOfC, productId);
}

const char* Bsp_hwRevisionName(int hwRevision)
{
    return os::bsp::nameOf(os::bsp::hwRevisionNamesOfC, hwRevision);
}

const char* Bsp_switchTypeName(int switchType)
{
    return os::bsp::nameOf(os::bsp::switchTypeNamesOfC, switchType);
}

const char* Bsp_dspTypeName(int dspType)
{
    return os::bsp::nameOf(os::bsp::dspTypeNamesOfC, dspType);
}

const char* Bsp_trafFpgaTypeName(int trafFpgaType)
{
    return os::bsp::nameOf(os::bsp::trafFpgaTypeNamesOfC, trafFpgaType);
}

const char* Bsp_controlBackplaneName(int controlBackplane)
{
    return os::bsp::nameOf(os::bsp::controlBackplaneNamesOfC, controlBackplane);
}

const char* Bsp_trafficBackplaneName(int trafficBackplane)
{
    return os::bsp::nameOf(os::bsp::trafficBackplaneNamesOfC, trafficBackplane);
}

const char* Bsp_radiolinkModeName(int radiolinkMode)
{
    return os::bsp::nameOf(os::bsp::radiolinkModeNamesOfC, radiolinkMode);
}

const char* Bsp_platformTypeName(int platformType)
{
    return os::bsp::nameOf(os::bsp::platformTypeNamesOfC, platformType);
}

const char* Bsp_resetTypeName(int resetType)
{
    return os::bsp::nameOf(os::bsp::resetTypeNamesOfC, resetType);
}
