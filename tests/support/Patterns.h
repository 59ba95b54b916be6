// POSIX extended regular expressions: std::regex takes seconds to compile.

#pragma once

#include <string>
#include <vector>

namespace testsupport
{

/** The first match in a text and its groups; nothing without a match. */
std::vector<std::string> firstMatch(const std::string& text, const std::string& pattern);

/** The text with another one instead of each match. */
std::string replaceMatches(std::string text, const std::string& pattern, const std::string& by);

} // namespace testsupport
