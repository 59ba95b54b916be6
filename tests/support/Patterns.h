/**
 * @file
 * @brief POSIX extended regular expressions: std::regex takes seconds to compile.
 */
#ifndef TESTS_SUPPORT_PATTERNS_H
#define TESTS_SUPPORT_PATTERNS_H

#include <string>
#include <vector>

namespace testsupport
{

/** The first match in a text and its groups; nothing without a match. */
std::vector<std::string> firstMatch(const std::string& text, const std::string& pattern);

/** The text with another one instead of each match, none of which may be empty. */
std::string replaceMatches(std::string text, const std::string& pattern, const std::string& by);

} // namespace testsupport

#endif
