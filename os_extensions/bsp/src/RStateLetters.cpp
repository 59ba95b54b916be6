#include "RStateLetters.h"

#include "RState.h"

#include <array>
#include <string_view>

namespace
{

constexpr std::string_view OuterAlphabet = "ABCDEFGHJKLMNSTUVXYZ";
constexpr std::string_view InnerAlphabet = "BCDFGHJKLMNSTVXZ";
static_assert(OuterAlphabet.size() == RState::MaxMinorPos1);
static_assert(InnerAlphabet.size() == RState::MaxMinorPos2);
static_assert(InnerAlphabet.size() == RState::MaxMinorPos3);
static_assert(OuterAlphabet.size() == RState::MaxMinorPos4);

constexpr std::size_t MaxLetters = 4;
constexpr int Pos2 = RState::MaxMinorPos2;
constexpr int Pos3 = RState::MaxMinorPos3;
constexpr int Pos4 = RState::MaxMinorPos4;

/** First minor that is written with so many letters. */
constexpr std::array<std::int32_t, MaxLetters + 1> firstMinors{
    0, 0, RState::MaxMinorSize1Char, RState::MaxMinorSize2Chars, RState::MaxMinorSize3Chars};

/** For each letter the index of the alphabet's first letter that is not before it. */
using Indexes = std::array<std::uint8_t, 'Z' - 'A' + 1>;

constexpr Indexes indexesOf(std::string_view alphabet)
{
    Indexes indexes{};
    std::uint8_t index = 0;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        indexes[i] = index;
        if (alphabet[index] == static_cast<char>('A' + i)) {
            ++index;
        }
    }
    return indexes;
}

constexpr Indexes OuterIndexes = indexesOf(OuterAlphabet);
constexpr Indexes InnerIndexes = indexesOf(InnerAlphabet);

constexpr bool isOuter(int position)
{
    return position == 1 || position == MaxLetters;
}

// Functions of the module's own, which the compiler may inline.

int indexOf(char letter, int position)
{
    if (!rstate::isUpper(letter)) {
        return 0;
    }
    return (isOuter(position) ? OuterIndexes
                              : InnerIndexes)[static_cast<std::size_t>(letter - 'A')];
}

char letterAt(int index, int position)
{
    if (index < 0) {
        return 'A' - 1;
    }
    const auto place = static_cast<std::size_t>(index);
    const std::string_view alphabet = isOuter(position) ? OuterAlphabet : InnerAlphabet;
    return place < alphabet.size() ? alphabet[place]
                                   : static_cast<char>('Z' + 1 + place - alphabet.size());
}

} // namespace

int RState::getMinorIndex(char letter, int position)
{
    return indexOf(letter, position);
}

char RState::getMinorChar(int index, int position)
{
    return letterAt(index, position);
}

namespace rstate
{

std::int32_t readLetters(const char*& text)
{
    constexpr std::array<std::int32_t, MaxLetters> sizes{RState::MaxMinorPos1, Pos2, Pos3, Pos4};
    std::int32_t number = 0;
    std::size_t letters = 0;
    while (letters < MaxLetters && isUpper(*text)) {
        const int index = indexOf(*text, static_cast<int>(letters + 1));
        number = number * sizes[letters] + index;
        ++letters;
        ++text;
    }
    return firstMinors[letters] + number;
}

char* writeLetters(char* text, std::int32_t minor)
{
    if (minor < firstMinors[2]) {
        *text++ = letterAt(minor, 1);
    } else if (minor < firstMinors[3]) {
        const int rest = minor - firstMinors[2];
        *text++ = letterAt(rest / Pos2, 1);
        *text++ = letterAt(rest % Pos2, 2);
    } else if (minor < firstMinors[4]) {
        const int rest = minor - firstMinors[3];
        *text++ = letterAt(rest / (Pos3 * Pos2), 1);
        *text++ = letterAt(rest / Pos3 % Pos2, 2);
        *text++ = letterAt(rest % Pos3, 3);
    } else {
        const int rest = minor - firstMinors[4];
        *text++ = letterAt(rest / (Pos4 * Pos3 * Pos2), 1);
        *text++ = letterAt(rest / (Pos4 * Pos3) % Pos2, 2);
        *text++ = letterAt(rest / Pos4 % Pos3, 3);
        *text++ = letterAt(rest % Pos4, 4);
    }
    return text;
}

} // namespace rstate
