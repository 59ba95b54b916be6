#include "Expect.h"

#include <cstdlib>
#include <iostream>

namespace fuzz
{

namespace
{

[[noreturn]] void fail(const std::string& text)
{
    std::cerr << "fuzz: " << text << std::endl;
    std::abort();
}

/** The text with what is not printable as \xHH, but for newlines. */
std::string visible(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\n' || (byte >= ' ' && byte <= '~')) {
            result += character;
        } else {
            constexpr const char* Digits = "0123456789ABCDEF";
            result += {'\\', 'x', Digits[byte / 16], Digits[byte % 16]};
        }
    }
    return result;
}

} // namespace

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    return text;
}

void expectEqual(const std::string& what, const std::string& got, const std::string& wanted)
{
    if (got != wanted) {
        fail(what + " is\n" + visible(got) + "\nbut the model says\n" + visible(wanted));
    }
}

void expectEqual(const std::string& what, long got, long wanted)
{
    expectEqual(what, std::to_string(got), std::to_string(wanted));
}

void expect(const std::string& what, bool holds)
{
    if (!holds) {
        fail("it does not hold: " + what);
    }
}

} // namespace fuzz
