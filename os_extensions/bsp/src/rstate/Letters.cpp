#include "rstate/Letters.h"

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

/** First minor that is written with one letter, with two, and so on. */
constexpr std::array<std::int32_t, MaxLetters> firstMinors{
    0, RState::MaxMinorSize1Char, RState::MaxMinorSize2Chars, RState::MaxMinorSize3Chars};

/** For each letter from A to Z the index of the first one of an alphabet that is not before it. */
using Indexes = std::array<std::uint8_t, 'Z' - 'A' + 1>;

// not counted: the compiler runs it
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

struct Alphabet
{
    std::string_view letters;
    Indexes indexes;
};

constexpr Alphabet Outer{OuterAlphabet, indexesOf(OuterAlphabet)};
constexpr Alphabet Inner{InnerAlphabet, indexesOf(InnerAlphabet)};

/** The alphabet of each position. */
constexpr std::array<Alphabet, MaxLetters> alphabets{Outer, Inner, Inner, Outer};

const Alphabet& alphabetOf(int position)
{
    return position == 1 || position == MaxLetters ? Outer : Inner;
}

int indexOf(char letter, const Alphabet& alphabet)
{
    return rstate::isUpper(letter) ? alphabet.indexes[static_cast<std::size_t>(letter - 'A')] : 0;
}

char letterAt(int index, const Alphabet& alphabet)
{
    if (index < 0) {
        return 'A' - 1;
    }
    const auto place = static_cast<std::size_t>(index);
    const std::size_t size = alphabet.letters.size();
    return place < size ? alphabet.letters[place] : static_cast<char>('Z' + 1 + place - size);
}

} // namespace

int RState::getMinorIndex(char letter, int position)
{
    return indexOf(letter, alphabetOf(position));
}

char RState::getMinorChar(int index, int position)
{
    return letterAt(index, alphabetOf(position));
}

namespace rstate
{

std::int32_t readLetters(const char*& text)
{
    constexpr std::array<std::int32_t, MaxLetters> sizes{RState::MaxMinorPos1, Pos2, Pos3, Pos4};
    std::int32_t number = 0;
    std::size_t letters = 0;
    do {
        const int index = indexOf(*text, alphabets[letters]);
        number = number * sizes[letters] + index;
        ++letters;
        ++text;
    } while (letters < MaxLetters && isUpper(*text));
    return firstMinors[letters - 1] + number;
}

char* writeLetters(char* text, std::int32_t minor)
{
    if (minor < firstMinors[1]) {
        *text++ = letterAt(minor, Outer);
    } else if (minor < firstMinors[2]) {
        const int rest = minor - firstMinors[1];
        *text++ = letterAt(rest / Pos2, Outer);
        *text++ = letterAt(rest % Pos2, Inner);
    } else if (minor < firstMinors[3]) {
        const int rest = minor - firstMinors[2];
        *text++ = letterAt(rest / (Pos3 * Pos2), Outer);
        *text++ = letterAt(rest / Pos3 % Pos2, Inner);
        *text++ = letterAt(rest % Pos3, Inner);
    } else {
        const int rest = minor - firstMinors[3];
        *text++ = letterAt(rest / (Pos4 * Pos3 * Pos2), Outer);
        *text++ = letterAt(rest / (Pos4 * Pos3) % Pos2, Inner);
        *text++ = letterAt(rest / Pos4 % Pos3, Inner);
        *text++ = letterAt(rest % Pos4, Outer);
    }
    return text;
}

} // namespace rstate
