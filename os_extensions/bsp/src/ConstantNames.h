/**
 * @file
 * @brief Names that the layer itself looks up.
 *
 * They are constant: also while static objects are made, in whatever order, they are there.
 */
#ifndef BSP_SRC_CONSTANTNAMES_H
#define BSP_SRC_CONSTANTNAMES_H

#include <cstddef>
#include <cstdint>

namespace os::bsp
{

/** As NameEntry, but for the text. */
struct ConstantName
{
    std::int32_t value;
    const char* text;
};

/** The text of the first row with that value; of the last row, "EndOfList", when there is none. */
template <std::size_t Size>
constexpr const char* nameOf(const ConstantName (&table)[Size], int value)
{
    std::size_t row = 0;
    while (row + 1 < Size && table[row].value != value) {
        ++row;
    }
    return table[row].text;
}

} // namespace os::bsp

// A macro, because the text is the enumerator's name.

/** Row of a table of names. */
#define BSP_NAME_ROW(ENUM, NAME) {static_cast<int>(ENUM::NAME), #NAME},

#endif
