#include "Bsp.h"

#include "BspTrace.h"
#include "HvxMessage.h"
#include "identity/BoardIdentity.h"
#include "identity/Product.h"

namespace os
{
namespace bsp
{

namespace
{

struct Product
{
    int code;
    ProductId id;
};

/** The configuration library's product codes. It has no number 8, and none for older products. */
constexpr Product products[] = {
    {1, ProductId::NXU4A},     {2, ProductId::NXU2001},  {3, ProductId::NXU2002},
    {4, ProductId::KT4851_1},  {5, ProductId::KT4851_2}, {6, ProductId::KT4766},
    {7, ProductId::DWB2001},   {9, ProductId::KT4851_3}, {10, ProductId::DWB2002},
    {11, ProductId::KT4851_4}, {12, ProductId::NXU2003}, {13, ProductId::NXU2004},
    {14, ProductId::DWB2003},
};

} // namespace

ProductId productOf(int productCode)
{
    for (const Product& product : products) {
        if (product.code == productCode) {
            return product.id;
        }
    }
    return ProductId::EndOfList;
}

ProductId getProductId()
{
    const int code = selectedVariant().productCode;
    const ProductId product = productOf(code);
    if (product == ProductId::EndOfList) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Unknown product ID: " << code);
    }
    return product;
}

int getHwRevision()
{
    return selectedVariant().hwRevision;
}

} // namespace bsp
} // namespace os
