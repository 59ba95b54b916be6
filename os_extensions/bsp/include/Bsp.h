/**
 * @file
 * @brief Board identity, hardware variants, settings, firmware versions and the reset type.
 *
 * Conventions, which hold for every function here unless it says otherwise:
 *
 * 1. Queries answer the value itself. Hardware that is not known is answered with the enumeration's
 *    `EndOfList`, or the default that the function names; never with an error. The reason goes to
 *    the trace channel "bsp.core" at level 1.
 * 2. Functions that change or read something answer 0 for success and -1 for failure.
 * 3. Texts are NUL-terminated, static and never freed by the caller; they stay valid for the life
 *    of the process.
 * 4. Enumerations cross the C interface as plain int and are never renumbered.
 * 5. Any thread may call any function at any time.
 * 6. The hardware code is read from the EEPROM once per process, at the first question that needs
 *    it, even when the read fails: then the code of the platform's variant 14 stands for it. It
 *    selects the first variant that the platform finds equal to it, or variant 0 when none is.
 *    "Fixed once per process" marks the answers that follow from it.
 * 7. Nothing is caught: an exception of the one-time initialisation (std::system_error), of the
 *    key/value store or of the device library passes through, the C functions included.
 */
#ifndef BSP_H
#define BSP_H

#include "BspEnumerations.h"
#include "BspExport.h"
#include "NxuHwVariant.h"

#include <stdint.h>

#ifdef __cplusplus
#include <string>
#else
#include <stdbool.h>
#endif

/** One known board: its ID and the ID's text. */
struct BoardIdEntry
{
    int32_t boardId; /**< Product << 16 | hardware revision. */
    char text[32];   /**< Text of the ID, NUL-terminated and NUL-padded. */
};

#ifdef __cplusplus

namespace os
{
namespace bsp
{

class WarmSlot;

/**
 * The product of this board, by the product code of the selected variant; `EndOfList` when that is
 * not known. Fixed once per process; an unknown product is traced at every call.
 */
BSP_API ProductId getProductId();

/**
 * The hardware revision of the selected variant as it stands there, usually a value of HwRevision.
 * Fixed once per process.
 */
BSP_API int getHwRevision();

/**
 * `(getProductId() << 16) | getHwRevision()`. The revision is not masked: one that is negative or
 * above 65535 reaches into the product's half. Fixed once per process.
 */
BSP_API int getBoardId();

/**
 * Text of the first row of Bsp_boardIdMap with this board's ID, or "Unknown board revision"; never
 * null. Fixed once per process.
 */
BSP_API const char* getBoardIdText();

/**
 * Text of the newest board ID of this product, or "Unknown board revision". Fixed once per process.
 *
 * A row of the map belongs to the product when the row's ID without its lowest four bits equals the
 * product's number; so only product 0 has one. Never null.
 */
BSP_API const char* getLatestBoardIdText();

/**
 * The traffic FPGA; `EndOfList` when not supported.
 *
 * Read anew at each call: on boards that can carry either of two FPGA variants the setting
 * key::FpgaVariant of the key/value store decides. Exceptions of the store pass.
 */
BSP_API TrafFpgaType getTrafFpgaType();

/**
 * The digital signal processor; `EndOfList` when not known. Fixed once per process.
 *
 * As do the traffic FPGA, the platform, the backplanes and the radio links, it follows from the
 * hardware code itself, also where no variant has that code.
 */
BSP_API DspType getDspType();

/** The platform; `EndOfList` when not known. Fixed once per process. */
BSP_API PlatformType getPlatformType();

/** The backplane of the payload traffic; `EndOfList` when not known. Fixed once per process. */
BSP_API TrafficBackplane getTrafficBackplane();

/** The backplane of the control traffic; `EndOfList` when not known. Fixed once per process. */
BSP_API ControlBackplane getControlBackplane();

/** The number of radio links; 2 when the hardware is not known. Fixed once per process. */
BSP_API int getNumberOfRadiolinks();

/** The number of channels of the product; 1 when that is not known. Fixed once per process. */
BSP_API unsigned int getNumberOfChannels();

/** The Ethernet switch: `None` on every board; no hardware is asked. */
BSP_API SwitchType getSwitchType();

/**
 * Path of an FPGA's image file, relative to a folder of the caller's. No hardware is asked.
 *
 * @param name  key of the FPGA: the name of a type that getTrafFpgaType answers, in lower case, or
 *              "pci"; compared exactly; not null
 * @return the path, or null when there is no such key
 */
BSP_API const char* getFpgaPath(const char* name);

/**
 * The radio-link mode that the store held when this process asked for the first time; `Rl4` when
 * none was set, or a text that is no mode. It stays so for the life of the process, whatever is set
 * or cleared later, by this process too. Exceptions of the store pass; then the next call asks
 * again.
 */
BSP_API RadiolinkMode getRadiolinkMode();

/**
 * Stores the radio-link mode durably; processes that ask for the first time from now on get it.
 * Exceptions of the store pass.
 *
 * @return true when the store accepted it; false when it did not, and for a value that is no mode,
 *         with which the store is not asked
 */
BSP_API bool setRadiolinkMode(RadiolinkMode mode);

/**
 * Removes the stored radio-link mode, which means `Rl4` for processes that ask for the first time
 * from now on. Exceptions of the store pass.
 *
 * @return whether the store did so
 */
BSP_API bool clearRadiolinkMode();

/** The slot id of this process's board; made at the first call and never destroyed. */
BSP_API WarmSlot& slotInstance();

/**
 * The cause of the board's last restart.
 *
 * Fixed once per process, but for `Unknown`, which is asked for again at each call. On platform
 * Nxu4 it is the word of the board's reset register as it stands there, so any integer is possible.
 * Exceptions of the device library pass.
 */
BSP_API ResetType getResetType();

/** Name of a reset type; "EndOfList" for a value that is none. */
BSP_API std::string resetTypeToString(const ResetType& type);

} // namespace bsp
} // namespace os

extern "C"
{
    /** A hardware variant, under the name that C knows it by. */
    typedef os::bsp::NxuHwVariant NxuHwVariant;
#else
/** A hardware variant, under the name that C++ knows it by. */
typedef struct NxuHwVariant NxuHwVariant;
#endif

    /** Number of rows of Bsp_boardIdMap. */
    enum
    {
        Bsp_NoOfBoardIds = 19
    };

    /** The known board IDs and their texts; read-only. The newer products have none. */
    extern BSP_API const struct BoardIdEntry Bsp_boardIdMap[Bsp_NoOfBoardIds];

    /** `product << 16 | revision`, see os::bsp::getBoardId. Fixed once per process. */
    BSP_API int Bsp_getBoardId(void);

    /** Text of the board ID, or "Unknown board revision"; never null. Fixed once per process. */
    BSP_API const char* Bsp_getBoardIdText(void);

    /**
     * Text of the newest board ID of product 0, "Unknown board revision" for any other product; see
     * os::bsp::getLatestBoardIdText. Never null. Fixed once per process.
     */
    BSP_API const char* Bsp_getLatestBoardIdText(void);

    /** The selected variant's hardware revision as it stands there. Fixed once per process. */
    BSP_API int Bsp_getHwRevision(void);

    /** The product: a ProductId, its `EndOfList` when not known. Fixed once per process. */
    BSP_API int Bsp_getProductId(void);

    /**
     * The hardware variant of this board: the first whose code equals the hardware code, or the
     * platform's first variant when none does. Fixed once per process; never null.
     */
    BSP_API const NxuHwVariant* Bsp_getNxuHwVariant(void);

    /** The signal processor: a DspType, its `EndOfList` when not known. Fixed once per process. */
    BSP_API int Bsp_getDspType(void);

    /**
     * The traffic FPGA: a TrafFpgaType, its `EndOfList` when not supported. Read anew at each call;
     * see os::bsp::getTrafFpgaType.
     */
    BSP_API int Bsp_getTrafFpgaType(void);

    /** The platform: a PlatformType, its `EndOfList` when not known. Fixed once per process. */
    BSP_API int Bsp_getPlatformType(void);

    /**
     * The backplane of the payload traffic: a TrafficBackplane, its `EndOfList` when not known.
     * Fixed once per process.
     */
    BSP_API int Bsp_getTrafficBackplane(void);

    /**
     * The backplane of the control traffic: a ControlBackplane, its `EndOfList` when not known.
     * Fixed once per process.
     */
    BSP_API int Bsp_getControlBackplane(void);

    /** The number of channels; 1 when the product is not known. Fixed once per process. */
    BSP_API unsigned int Bsp_getNumberOfChannels(void);

    /** The number of radio links; 2 when the hardware is not known. Fixed once per process. */
    BSP_API int Bsp_getNumberOfRlt(void);

    /** The Ethernet switch: a SwitchType, `None` on every board. */
    BSP_API int Bsp_getSwitchType(void);

    /**
     * Path of an FPGA's image file, relative to a folder of the caller's; null when @p name is not
     * a key of os::bsp::getFpgaPath. @p name is not null.
     */
    BSP_API const char* Bsp_getFpgaPath(const char* name);

    /**
     * The radio-link mode, a RadiolinkMode, as it was when this process asked for the first time;
     * see os::bsp::getRadiolinkMode.
     */
    BSP_API int Bsp_getRadiolinkMode(void);

    /**
     * Stores a RadiolinkMode durably for processes that ask for the first time from now on. Returns
     * 0, or -1 when the store refuses or @p mode is none.
     */
    BSP_API int Bsp_setRadiolinkMode(int mode);

    /**
     * Removes the stored mode, which means `Rl4` for processes that ask for the first time from now
     * on. Returns 0, or -1 when the store refuses.
     */
    BSP_API int Bsp_clearRadiolinkMode(void);

    /**
     * The cause of the board's last restart, a ResetType or whatever the board's register holds;
     * see os::bsp::getResetType. Its name: Bsp_resetTypeName.
     */
    BSP_API int Bsp_getResetType(void);

    /**
     * The position of the board in its rack, shared by all processes and kept over warm restarts:
     * -1 when not set yet or not available. Read anew at each call.
     */
    BSP_API int Bsp_getSlotId(void);

    /** Stores the position of the board in its rack; ignored when the store is not available. */
    BSP_API void Bsp_setSlotId(int id);

    /** The same as WarmDatabase_createObject. */
    BSP_API int Bsp_createDtcmObject(const char* name, void** object, unsigned int objectSize);

    /** The same as WarmDatabase_retrieveObject. */
    BSP_API int Bsp_retrieveDtcmObject(const char* name, void** object, unsigned int objectSize);

    /** The same as WarmDatabase_getObjectData. */
    BSP_API int Bsp_getDtcmObjectData(const char* name, void** object, unsigned int objectSize,
                                      void** sync, bool* created);

    /**
     * Finds the R-state of the kernel inside a gzip-compressed kernel image.
     *
     * Read anew at each call. The image is inflated to "/dev/shm/zImage_tmp", which is gone when
     * the call returns; simultaneous calls of any processes and threads wait for each other.
     *
     * @param fileName  path of the image
     * @param rstate    receives the R-state, at most 7 characters and a NUL; left as it is when the
     *                  kernel's version has no fourth field, which is a success too
     * @param size      bytes that @p rstate holds, at least 8
     * @return 0 when a kernel version was found, -1 otherwise
     */
    BSP_API int Bsp_getKernelRState(const char* fileName, char* rstate, unsigned int size);

    /**
     * Finds the product number and the R-state that a boot loader image carries as text lines.
     *
     * Read anew at each call. A value that the image does not carry is "Not found". Values longer
     * than their room are cut; both are NUL-terminated.
     *
     * @param deviceName         path of the image or of the device that holds it
     * @param productNumber      receives the product number; untouched on failure
     * @param productNumberSize  bytes that @p productNumber holds, at least 1
     * @param rstate             receives the R-state; untouched on failure
     * @param rstateSize         bytes that @p rstate holds, at least 1
     * @return 0 when the image was read, -1 when it could not be read or a size is 0
     */
    BSP_API int Bsp_getUbootProductInfo(const char* deviceName, char* productNumber,
                                        unsigned int productNumberSize, char* rstate,
                                        unsigned int rstateSize);

#ifdef __cplusplus
}
#endif

#endif
