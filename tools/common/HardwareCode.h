/**
 * @file
 * @brief A board's hardware code as the bytes of its EEPROM and as text.
 */
#ifndef TOOLS_COMMON_HARDWARECODE_H
#define TOOLS_COMMON_HARDWARECODE_H

#include "NxuHwVariant.h"

#include <optional>
#include <string>

namespace hardwarecode
{

/** The eight bytes in the EEPROM of a board with this code. */
std::string bytesOf(const os::bsp::NxuHwCode& code);

/** Two hexadecimal digits for each byte. */
std::string textOf(const std::string& bytes);

/** The bytes that a text of 16 hexadecimal digits stands for; nothing for any other text. */
std::optional<std::string> parse(const std::string& text);

} // namespace hardwarecode

#endif
