#include "Bsp.h"

#include "identity/HardwareCode.h"

int Bsp_getBoardId(void)
{
    return os::bsp::getBoardId();
}

const char* Bsp_getBoardIdText(void)
{
    return os::bsp::getBoardIdText();
}

const char* Bsp_getLatestBoardIdText(void)
{
    return os::bsp::getLatestBoardIdText();
}

int Bsp_getHwRevision(void)
{
    return os::bsp::getHwRevision();
}

int Bsp_getProductId(void)
{
    return static_cast<int>(os::bsp::getProductId());
}

const NxuHwVariant* Bsp_getNxuHwVariant(void)
{
    return &os::bsp::selectedVariant();
}

int Bsp_getDspType(void)
{
    return static_cast<int>(os::bsp::getDspType());
}

int Bsp_getTrafFpgaType(void)
{
    return static_cast<int>(os::bsp::getTrafFpgaType());
}

int Bsp_getPlatformType(void)
{
    return static_cast<int>(os::bsp::getPlatformType());
}

int Bsp_getTrafficBackplane(void)
{
    return static_cast<int>(os::bsp::getTrafficBackplane());
}

int Bsp_getControlBackplane(void)
{
    return static_cast<int>(os::bsp::getControlBackplane());
}

unsigned int Bsp_getNumberOfChannels(void)
{
    return os::bsp::getNumberOfChannels();
}

int Bsp_getNumberOfRlt(void)
{
    return os::bsp::getNumberOfRadiolinks();
}

int Bsp_getSwitchType(void)
{
    return static_cast<int>(os::bsp::getSwitchType());
}

const char* Bsp_getFpgaPath(const char* name)
{
    return os::bsp::getFpgaPath(name);
}

int Bsp_getRadiolinkMode(void)
{
    return static_cast<int>(os::bsp::getRadiolinkMode());
}

int Bsp_setRadiolinkMode(int mode)
{
    return os::bsp::setRadiolinkMode(static_cast<os::bsp::RadiolinkMode>(mode)) ? 0 : -1;
}

int Bsp_clearRadiolinkMode(void)
{
    return os::bsp::clearRadiolinkMode() ? 0 : -1;
}
