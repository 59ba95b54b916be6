#ifndef TOOLS_COMMON_TEXT_H
#define TOOLS_COMMON_TEXT_H

#include <optional>
#include <string>
#include <string_view>

/** The bytes as printable text: anything else is written "\xNN", a backslash twice. */
std::string printable(std::string_view bytes);

/** Two hexadecimal digits for each byte. */
std::string hexText(std::string_view bytes);

/** The bytes that such a text stands for; nothing for any other. */
std::optional<std::string> bytesOfHex(std::string_view text);

/** The text of an error's number. */
std::string errorText(int error);

/** A hex dump in lines of 16 bytes; equal lines after the first are one line "*". */
std::string hexDump(std::string_view bytes, std::size_t firstOffset);

#endif
