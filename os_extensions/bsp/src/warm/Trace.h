#ifndef BSP_WARMDATABASETRACE_H
#define BSP_WARMDATABASETRACE_H

#include "HvxMessage.h"

namespace os
{
namespace bsp
{
namespace dtcm
{

/** Channel "Bsp.WarmDatabase". */
extern HvxTrace warmDatabaseTrace;

} // namespace dtcm
} // namespace bsp
} // namespace os

#endif
