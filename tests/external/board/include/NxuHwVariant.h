/* The board's own edition of the header: it has what the layer needs, and more. */
#ifndef SAMPLE_NXUHWVARIANT_H
#define SAMPLE_NXUHWVARIANT_H

#include <stdint.h>

#define SAMPLE_BOARD 1

#ifdef __cplusplus
#include <vector>

namespace os
{
namespace bsp
{
#endif

struct NxuHwCode
{
    int32_t word[8];
};

struct NxuHwVariant
{
    int32_t hwRevision;
    int32_t reserved;
    int32_t productCode;
    struct NxuHwCode code;
};

#ifdef __cplusplus
extern const std::vector<NxuHwVariant> hwVariants;

bool operator==(const NxuHwVariant& variant, const NxuHwCode& code);

} // namespace bsp
} // namespace os
#endif

#endif
