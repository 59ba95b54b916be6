/**
 * @file
 * @brief Interface of the board configuration library: the table of hardware variants.
 *
 * The two structures are plain data and can be read from C.
 */
#ifndef PLATFORM_NXUHWVARIANT_H
#define PLATFORM_NXUHWVARIANT_H

#include <stdint.h>

#ifdef __cplusplus
#include <vector>

namespace os
{
namespace bsp
{
#endif

/** Hardware code of a board; word i holds byte i of the EEPROM, zero-extended. */
struct NxuHwCode
{
    int32_t word[8]; /**< The words. */
};

/** One known hardware variant. */
struct NxuHwVariant
{
    int32_t hwRevision;    /**< Revision, a value of HwRevision. */
    int32_t reserved;      /**< The library's own. */
    int32_t productCode;   /**< Product number of the configuration library. */
    struct NxuHwCode code; /**< Hardware code that identifies the variant. */
};

#ifdef __cplusplus
/** All known variants, at least 15. Element 14 is the default, element 0 the fallback. */
extern const std::vector<NxuHwVariant> hwVariants;

/** Whether a board with the hardware code @p code is of the variant @p variant. */
bool operator==(const NxuHwVariant& variant, const NxuHwCode& code);

} // namespace bsp
} // namespace os
#endif

#endif
