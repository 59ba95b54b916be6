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

/** The minor that the letters at the text's start encode; moves the text past the letters read. */
std::int32_t readLetters(const char*& text);

/** Writes the letters of a minor, at most four; returns the end of what it wrote. */
char* writeLetters(char* text, std::int32_t minor);

} // namespace rstate

#endif
