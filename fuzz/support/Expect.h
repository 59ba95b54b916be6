#ifndef FUZZ_SUPPORT_EXPECT_H
#define FUZZ_SUPPORT_EXPECT_H

#include <string>
#include <vector>

namespace fuzz
{

/** The lines, each ended by a newline. */
std::string joined(const std::vector<std::string>& lines);

/** Ends the fuzzer, with both texts, when they differ. */
void expectEqual(const std::string& what, const std::string& got, const std::string& wanted);
void expectEqual(const std::string& what, long got, long wanted);

/** Ends the fuzzer when that does not hold. */
void expect(const std::string& what, bool holds);

} // namespace fuzz

#endif
