#include "TraceText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace qeltrace
{

namespace
{

constexpr std::string_view CutMark = "...";

struct ByteRange
{
    unsigned char first;
    unsigned char last;

    bool has(char character) const
    {
        const auto byte = static_cast<unsigned char>(character);
        return first <= byte && byte <= last;
    }
};

/** How letters begin, and how long they then are. */
struct LetterForm
{
    ByteRange lead;
    ByteRange second; /**< For letters of more than one byte. */
    std::size_t length;
};

constexpr ByteRange Continuation{0x80, 0xBF};

// UTF-8 in its shortest form, without surrogates, controls and the backslash.
constexpr LetterForm LetterForms[] = {
    {{0x20, 0x5B}, {}, 1},           {{0x5D, 0x7E}, {}, 1},
    {{0xC2, 0xC2}, {0xA0, 0xBF}, 2}, {{0xC3, 0xDF}, Continuation, 2},
    {{0xE0, 0xE0}, {0xA0, 0xBF}, 3}, {{0xE1, 0xEC}, Continuation, 3},
    {{0xED, 0xED}, {0x80, 0x9F}, 3}, {{0xEE, 0xEF}, Continuation, 3},
    {{0xF0, 0xF0}, {0x90, 0xBF}, 4}, {{0xF1, 0xF3}, Continuation, 4},
    {{0xF4, 0xF4}, {0x80, 0x8F}, 4},
};

/** Length of the letter at the beginning of a text that is not empty; 0 when there is none. */
std::size_t letterLength(const char* text, std::size_t size)
{
    for (const LetterForm& form : LetterForms) {
        if (form.lead.has(*text)) {
            const bool isWhole =
                form.length == 1 || (form.length <= size && form.second.has(text[1]) &&
                                     std::all_of(text + 2, text + form.length, [](char character) {
                                         return Continuation.has(character);
                                     }));
            return isWhole ? form.length : 0;
        }
    }
    return 0;
}

std::string escaped(char character)
{
    std::array<char, sizeof "\\xHH"> text{};
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "\\x%02X",
                      static_cast<unsigned int>(static_cast<unsigned char>(character))));
    return text.data();
}

} // namespace

std::string onOneLine(const std::string& text)
{
    const std::size_t end = !text.empty() && text.back() == '\n' ? text.size() - 1 : text.size();
    std::string line;
    std::size_t cut = 0;
    for (std::size_t i = 0; i < end;) {
        const std::size_t length = letterLength(&text[i], end - i);
        line += length == 0 ? escaped(text[i]) : text.substr(i, length);
        i += std::max<std::size_t>(length, 1);
        if (line.size() > LongestLine) {
            return line.substr(0, cut).append(CutMark);
        }
        if (line.size() + CutMark.size() <= LongestLine) {
            cut = line.size();
        }
    }
    return line;
}

} // namespace qeltrace
