/**
 * @file
 * @brief The products by their codes, for the layer and for the simulator.
 */
#ifndef BSP_PRODUCTS_PRODUCTS_H
#define BSP_PRODUCTS_PRODUCTS_H

#include "BspEnumerations.h"

namespace os::bsp
{

struct Product
{
    int code;
    ProductId id;
};

/** The configuration library's product codes. It has no number 8, and none for older products. */
inline constexpr Product products[] = {
    {1, ProductId::NXU4A},     {2, ProductId::NXU2001},  {3, ProductId::NXU2002},
    {4, ProductId::KT4851_1},  {5, ProductId::KT4851_2}, {6, ProductId::KT4766},
    {7, ProductId::DWB2001},   {9, ProductId::KT4851_3}, {10, ProductId::DWB2002},
    {11, ProductId::KT4851_4}, {12, ProductId::NXU2003}, {13, ProductId::NXU2004},
    {14, ProductId::DWB2003},
};

/** The product with a product code of the configuration library; EndOfList when there is none. */
constexpr ProductId productOf(int productCode)
{
    for (const Product& product : products) {
        if (product.code == productCode) {
            return product.id;
        }
    }
    return ProductId::EndOfList;
}

} // namespace os::bsp

#endif
