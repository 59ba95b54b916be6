/**
 * @file
 * @brief Name tables: the texts of an enumeration's values. For C++ only.
 */
#ifndef BSP_NAMES_H
#define BSP_NAMES_H

#ifdef __cplusplus

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace os
{
namespace bsp
{

/** One row of a name table. The last row of a table has the text "EndOfList". */
struct NameEntry
{
    std::int32_t value; /**< A value of the enumeration. */
    std::string text;   /**< Its name. */
};

/**
 * The text of a value.
 *
 * @param table  name table of the enumeration
 * @param value  any integer
 * @return the text of the first row with that value; "EndOfList" when there is none. It belongs to
 *         the table and stays valid until the program's static objects are destroyed.
 */
template <std::size_t Size> const std::string& nameOf(const NameEntry (&table)[Size], int value)
{
    std::size_t row = 0;
    while (row + 1 < Size && table[row].value != value) {
        ++row;
    }
    return table[row].text;
}

/** The text of a value of the enumeration; see above. */
template <std::size_t Size, typename Enumeration>
typename std::enable_if<std::is_enum<Enumeration>::value, const std::string&>::type
nameOf(const NameEntry (&table)[Size], Enumeration value)
{
    return nameOf(table, static_cast<int>(value));
}

} // namespace bsp
} // namespace os

#endif

#endif
