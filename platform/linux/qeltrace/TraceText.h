#ifndef PLATFORM_LINUX_QELTRACE_TRACETEXT_H
#define PLATFORM_LINUX_QELTRACE_TRACETEXT_H

#include <climits>
#include <cstddef>
#include <string>

namespace qeltrace
{

/** Bytes of a line that a pipe takes in one piece together with the newline. */
constexpr std::size_t LongestLine = PIPE_BUF - 1;

/**
 * The text, without a newline at its end, as a line without its newline.
 *
 * Letters of valid UTF-8 stay. A backslash, each byte of a control character and each byte that is
 * part of no letter become "\xHH". What is longer than LongestLine is cut between two of these and
 * ends with "...".
 */
std::string onOneLine(const std::string& text);

} // namespace qeltrace

#endif
