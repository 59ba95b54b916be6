/**
 * @file
 * @brief The products: a row for each. For the layer and the tools.
 */
#ifndef BSP_SHARED_PRODUCTS_H
#define BSP_SHARED_PRODUCTS_H

#include "BspEnumerations.h"

#include <optional>

namespace os::bsp
{

struct Product
{
    /** No column has a default: who adds a product thinks of each. */
    // not counted: the compiler runs it
    constexpr Product(ProductId ofId, std::optional<int> ofCode,
                      std::optional<unsigned int> ofChannels)
        : id(ofId), code(ofCode), channels(ofChannels)
    {}

    ProductId id;
    std::optional<int> code; /**< Number in the configuration library; older products have none. */
    std::optional<unsigned int> channels;
};

/** In the order of ProductId. The configuration library has no product 8. */
inline constexpr Product products[] = {
    // Left without channels on purpose: where these are asked for it counts as unknown.
    {ProductId::KT4754, std::nullopt, std::nullopt},
    {ProductId::KT4752, std::nullopt, 1},
    {ProductId::KT4751, std::nullopt, 1},
    {ProductId::VX4791, std::nullopt, 1},
    {ProductId::RG4792, std::nullopt, 1},
    {ProductId::NXU4A, 1, 2},
    {ProductId::NXU2001, 2, 1},
    {ProductId::NXU2002, 3, 2},
    {ProductId::DWB2001, 7, 1},
    {ProductId::DWB2002, 10, 2},
    {ProductId::KT4851_1, 4, 2},
    {ProductId::KT4851_2, 5, 2},
    {ProductId::KT4851_3, 9, 1},
    {ProductId::KT4766, 6, 2},
    {ProductId::KT4851_4, 11, 2},
    {ProductId::NXU2003, 12, 1},
    {ProductId::NXU2004, 13, 2},
    {ProductId::DWB2003, 14, 1},
};

/** Whether the table has a row for each product, and no product code twice. */
// not counted: the compiler runs it
constexpr bool areProductsComplete()
{
    int expected = 0;
    for (const Product& product : products) {
        if (static_cast<int>(product.id) != expected) {
            return false;
        }
        ++expected;
        for (const Product& other : products) {
            if (product.code && product.code == other.code && product.id != other.id) {
                return false;
            }
        }
    }
    return expected == static_cast<int>(ProductId::EndOfList);
}
static_assert(areProductsComplete(), "a row for each ProductId, in their order");

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

/** The number of channels of a product, when that is known. */
constexpr std::optional<unsigned int> channelsOf(ProductId id)
{
    for (const Product& product : products) {
        if (product.id == id) {
            return product.channels;
        }
    }
    return std::nullopt;
}

} // namespace os::bsp

#endif
