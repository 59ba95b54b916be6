/**
 * @file
 * @brief The board's enumerations and their name tables.
 *
 * Every enumeration counts from 0 and ends with `EndOfList`, which also stands for "unknown". The
 * values cross the C interface and are stored by callers: they are never renumbered.
 *
 * C++ has scoped enumerations in os::bsp and a table of names for each; any integer is a valid
 * value of an enumeration, so what hardware reports can be held as it is. C has the same values
 * with the enumeration's name in front, `Bsp_ProductId_NXU4A`, and functions for the names.
 */
#ifndef BSP_ENUMERATIONS_H
#define BSP_ENUMERATIONS_H

#include "BspExport.h"

#include <stdint.h>

/* One list for each enumeration makes the values and their texts, so that they cannot drift. */

/** Products. */
#define BSP_PRODUCT_ID_ROWS(ROW, ENUM)                                                             \
    ROW(ENUM, KT4754)                                                                              \
    ROW(ENUM, KT4752)                                                                              \
    ROW(ENUM, KT4751)                                                                              \
    ROW(ENUM, VX4791)                                                                              \
    ROW(ENUM, RG4792)                                                                              \
    ROW(ENUM, NXU4A)                                                                               \
    ROW(ENUM, NXU2001)                                                                             \
    ROW(ENUM, NXU2002)                                                                             \
    ROW(ENUM, DWB2001)                                                                             \
    ROW(ENUM, DWB2002)                                                                             \
    ROW(ENUM, KT4851_1)                                                                            \
    ROW(ENUM, KT4851_2)                                                                            \
    ROW(ENUM, KT4851_3)                                                                            \
    ROW(ENUM, KT4766)                                                                              \
    ROW(ENUM, KT4851_4)                                                                            \
    ROW(ENUM, NXU2003)                                                                             \
    ROW(ENUM, NXU2004)                                                                             \
    ROW(ENUM, DWB2003)

/** Hardware revisions. */
#define BSP_HW_REVISION_ROWS(ROW, ENUM)                                                            \
    ROW(ENUM, R1_P2)                                                                               \
    ROW(ENUM, R1_P3)                                                                               \
    ROW(ENUM, R1_P4)                                                                               \
    ROW(ENUM, R1_P5)                                                                               \
    ROW(ENUM, R2_P1)                                                                               \
    ROW(ENUM, R2_P2)                                                                               \
    ROW(ENUM, XPIC)

/** Ethernet switches. */
#define BSP_SWITCH_TYPE_ROWS(ROW, ENUM)                                                            \
    ROW(ENUM, None) ROW(ENUM, Etm) ROW(ENUM, BobCat2) ROW(ENUM, Cetus)

/** Digital signal processors. */
#define BSP_DSP_TYPE_ROWS(ROW, ENUM)                                                               \
    ROW(ENUM, None)                                                                                \
    ROW(ENUM, Atlas)                                                                               \
    ROW(ENUM, BCM85100)                                                                            \
    ROW(ENUM, BCM85110)                                                                            \
    ROW(ENUM, BCM85650)                                                                            \
    ROW(ENUM, BCM85655)                                                                            \
    ROW(ENUM, BCM85651)

/** Traffic FPGAs. */
#define BSP_TRAF_FPGA_TYPE_ROWS(ROW, ENUM)                                                         \
    ROW(ENUM, None)                                                                                \
    ROW(ENUM, Avocet)                                                                              \
    ROW(ENUM, Bittern)                                                                             \
    ROW(ENUM, Curlew)                                                                              \
    ROW(ENUM, Dunlin)                                                                              \
    ROW(ENUM, Eider)                                                                               \
    ROW(ENUM, Fulmar)                                                                              \
    ROW(ENUM, Gannet)                                                                              \
    ROW(ENUM, Heron)                                                                               \
    ROW(ENUM, Ibis)                                                                                \
    ROW(ENUM, Jackdaw)                                                                             \
    ROW(ENUM, Kestrel)                                                                             \
    ROW(ENUM, Linnet)                                                                              \
    ROW(ENUM, Mallard)                                                                             \
    ROW(ENUM, Nightjar)                                                                            \
    ROW(ENUM, Osprey)                                                                              \
    ROW(ENUM, Osprey2)                                                                             \
    ROW(ENUM, Puffin)                                                                              \
    ROW(ENUM, Quail)                                                                               \
    ROW(ENUM, Redwing)                                                                             \
    ROW(ENUM, Siskin)                                                                              \
    ROW(ENUM, Teal)                                                                                \
    ROW(ENUM, Wigeon)

/** Backplanes of the control traffic. */
#define BSP_CONTROL_BACKPLANE_ROWS(ROW, ENUM)                                                      \
    ROW(ENUM, None) ROW(ENUM, Pci) ROW(ENUM, Pcie) ROW(ENUM, Ethernet)

/** Backplanes of the payload traffic. */
#define BSP_TRAFFIC_BACKPLANE_ROWS(ROW, ENUM) ROW(ENUM, None) ROW(ENUM, Ptp) ROW(ENUM, Ethernet)

/** Radio-link modes. */
#define BSP_RADIOLINK_MODE_ROWS(ROW, ENUM) ROW(ENUM, Rl4) ROW(ENUM, Rl5)

/** Platforms. */
#define BSP_PLATFORM_TYPE_ROWS(ROW, ENUM) ROW(ENUM, Pt) ROW(ENUM, Nxu4) ROW(ENUM, Nxu5)

/** Causes of a restart. */
#define BSP_RESET_TYPE_ROWS(ROW, ENUM)                                                             \
    ROW(ENUM, Cold) ROW(ENUM, Warm) ROW(ENUM, Watchdog) ROW(ENUM, Unknown)

/** Every enumeration: its name, the name of its table and its list of rows. */
#define BSP_ENUMERATIONS(LIST)                                                                     \
    LIST(ProductId, productIdNames, BSP_PRODUCT_ID_ROWS)                                           \
    LIST(HwRevision, hwRevisionNames, BSP_HW_REVISION_ROWS)                                        \
    LIST(SwitchType, switchTypeNames, BSP_SWITCH_TYPE_ROWS)                                        \
    LIST(DspType, dspTypeNames, BSP_DSP_TYPE_ROWS)                                                 \
    LIST(TrafFpgaType, trafFpgaTypeNames, BSP_TRAF_FPGA_TYPE_ROWS)                                 \
    LIST(ControlBackplane, controlBackplaneNames, BSP_CONTROL_BACKPLANE_ROWS)                      \
    LIST(TrafficBackplane, trafficBackplaneNames, BSP_TRAFFIC_BACKPLANE_ROWS)                      \
    LIST(RadiolinkMode, radiolinkModeNames, BSP_RADIOLINK_MODE_ROWS)                               \
    LIST(PlatformType, platformTypeNames, BSP_PLATFORM_TYPE_ROWS)                                  \
    LIST(ResetType, resetTypeNames, BSP_RESET_TYPE_ROWS)

#ifdef __cplusplus

#include "BspNames.h"

namespace os
{
namespace bsp
{

#define BSP_ENUMERATOR(ENUM, NAME) NAME,
#define BSP_ENUMERATION(ENUM, TABLE, ROWS)                                                         \
    enum class ENUM : int                                                                          \
    {                                                                                              \
        ROWS(BSP_ENUMERATOR, ENUM) EndOfList                                                       \
    };                                                                                             \
    extern BSP_API const NameEntry TABLE[static_cast<int>(ENUM::EndOfList) + 1];
BSP_ENUMERATIONS(BSP_ENUMERATION)
#undef BSP_ENUMERATION
#undef BSP_ENUMERATOR

} // namespace bsp
} // namespace os

#else

#define BSP_ENUMERATOR(ENUM, NAME) Bsp_##ENUM##_##NAME,
#define BSP_ENUMERATION(ENUM, TABLE, ROWS)                                                         \
    enum Bsp_##ENUM{ROWS(BSP_ENUMERATOR, ENUM) Bsp_##ENUM##_EndOfList};
BSP_ENUMERATIONS(BSP_ENUMERATION)
#undef BSP_ENUMERATION
#undef BSP_ENUMERATOR

#endif

#ifdef __cplusplus
extern "C"
{
#endif

    /*
     * The names, for C as well. The texts are static and constant: any thread may ask for them at
     * any time, also before main.
     */

    /** Name of a ProductId, such as "NXU4A"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_productIdName(int productId);

    /** Name of a HwRevision, such as "R1_P2"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_hwRevisionName(int hwRevision);

    /** Name of a SwitchType, such as "None"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_switchTypeName(int switchType);

    /** Name of a DspType, such as "BCM85650"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_dspTypeName(int dspType);

    /** Name of a TrafFpgaType, such as "Fulmar"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_trafFpgaTypeName(int trafFpgaType);

    /** Name of a ControlBackplane, such as "Pcie"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_controlBackplaneName(int controlBackplane);

    /** Name of a TrafficBackplane, such as "Ptp"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_trafficBackplaneName(int trafficBackplane);

    /** Name of a RadiolinkMode, such as "Rl4"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_radiolinkModeName(int radiolinkMode);

    /** Name of a PlatformType, such as "Nxu4"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_platformTypeName(int platformType);

    /** Name of a ResetType, such as "Cold"; "EndOfList" for a value that is none. */
    BSP_API const char* Bsp_resetTypeName(int resetType);

#ifdef __cplusplus
}
#endif

/* The lists are for the library. */
#ifndef BSP_KEEP_ROWS
#undef BSP_PRODUCT_ID_ROWS
#undef BSP_HW_REVISION_ROWS
#undef BSP_SWITCH_TYPE_ROWS
#undef BSP_DSP_TYPE_ROWS
#undef BSP_TRAF_FPGA_TYPE_ROWS
#undef BSP_CONTROL_BACKPLANE_ROWS
#undef BSP_TRAFFIC_BACKPLANE_ROWS
#undef BSP_RADIOLINK_MODE_ROWS
#undef BSP_PLATFORM_TYPE_ROWS
#undef BSP_RESET_TYPE_ROWS
#undef BSP_ENUMERATIONS
#endif

#endif
