#include "BspTrace.h"

namespace os
{
namespace bsp
{

HvxTrace bspTrace("bsp.core", 3);

} // namespace bsp
} // namespace os
