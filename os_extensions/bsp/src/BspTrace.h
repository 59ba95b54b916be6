#ifndef BSP_SRC_BSPTRACE_H
#define BSP_SRC_BSPTRACE_H

#include "HvxTrace.h"

namespace os::bsp
{

/** The one trace channel of all board functions. */
extern HvxTrace bspTrace;

} // namespace os::bsp

#endif
