#ifndef BSP_SRC_RSTATE_LETTERS_H
#define BSP_SRC_RSTATE_LETTERS_H

#include <cstdint>

namespace rstate
{

// The classes of the C locale, whatever the program's locale and the signedness of char.
constexpr bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

constexpr bool isUpper(char character)
{
    return character >= 'A' && character <= 'Z';
}

/** The minor that the text's first letters, one at least, encode; moves the text past them. */
std::int32_t readLetters(const char*& text);

/** Writes the letters of a minor, at most four; returns the end of what it wrote. */
char* writeLetters(char* text, std::int32_t minor);

} // namespace rstate

#endif
