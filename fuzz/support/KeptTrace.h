/**
 * @file
 * @brief A trace library for fuzzers: all channels are at level 7 and keep what they get.
 */
#ifndef FUZZ_SUPPORT_KEPTTRACE_H
#define FUZZ_SUPPORT_KEPTTRACE_H

#include <string>
#include <vector>

namespace fuzz
{

/** The messages since the last call, as "LEVEL TEXT" without a newline at the end. */
std::vector<std::string> takeMessages();

} // namespace fuzz

#endif
