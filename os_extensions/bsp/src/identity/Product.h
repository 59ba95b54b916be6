#ifndef BSP_SRC_BSPPRODUCT_H
#define BSP_SRC_BSPPRODUCT_H

#include "BspEnumerations.h"

namespace os
{
namespace bsp
{

/** The product with a product code of the configuration library; EndOfList when there is none. */
ProductId productOf(int productCode);

} // namespace bsp
} // namespace os

#endif
