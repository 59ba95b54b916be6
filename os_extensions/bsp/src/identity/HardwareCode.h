#ifndef BSP_SRC_IDENTITY_HARDWARECODE_H
#define BSP_SRC_IDENTITY_HARDWARECODE_H

#include "NxuHwVariant.h"

namespace os::bsp
{

/** The hardware code, read from the EEPROM at the first call of the process and never again. */
const NxuHwCode& hwCode();

/** The variant that the hardware code selects, searched for at the first call of the process. */
const NxuHwVariant& selectedVariant();

} // namespace os::bsp

#endif
