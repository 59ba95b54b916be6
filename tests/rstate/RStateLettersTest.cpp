#include "RState.h"

#include <gmock/gmock.h>

#include <climits>

namespace
{

/** The letter that each of A to Z counts as. */
constexpr const char* Letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr const char* CountsAsOuter = "ABCDEFGHJJKLMNSSSSSTUVXXYZ";
constexpr const char* CountsAsInner = "BBCDFFGHJJKLMNSSSSSTVVXXZZ";

constexpr const char* OuterAlphabet = "ABCDEFGHJKLMNSTUVXYZ";
constexpr const char* InnerAlphabet = "BCDFGHJKLMNSTVXZ";

TEST(RStateLetters, GoFromIndexToLetterAtEachPosition)
{
    for (const int position : {1, 2, 3, 4}) {
        std::string letters;
        const int size = position == 1 || position == 4 ? 20 : 16;
        for (int index = 0; index < size; ++index) {
            letters += RState::getMinorChar(index, position);
        }
        EXPECT_EQ(letters, size == 20 ? OuterAlphabet : InnerAlphabet) << position;
    }
}

TEST(RStateLetters, GoFromLetterToIndexAtEachPosition)
{
    for (const int position : {1, 2, 3, 4}) {
        const bool outer = position == 1 || position == 4;
        const std::string alphabet = outer ? OuterAlphabet : InnerAlphabet;
        for (int i = 0; i < 26; ++i) {
            const char countsAs = (outer ? CountsAsOuter : CountsAsInner)[i];
            EXPECT_EQ(RState::getMinorIndex(Letters[i], position),
                      static_cast<int>(alphabet.find(countsAs)))
                << Letters[i] << " at " << position;
        }
    }
}

TEST(RStateLetters, FollowAsciiOutsideTheAlphabet)
{
    for (const int position : {1, 2, 3, 4}) {
        const int size = position == 1 || position == 4 ? 20 : 16;
        EXPECT_EQ(RState::getMinorChar(-1, position), '@');
        EXPECT_EQ(RState::getMinorChar(size, position), '[');
        EXPECT_EQ(RState::getMinorChar(size + 1, position), '\\');
        EXPECT_EQ(RState::getMinorChar(size + 2, position), ']');
    }
}

TEST(RStateLetters, SurviveAnyNumber)
{
    EXPECT_EQ(RState::getMinorChar(INT_MIN, 1), '@');
    EXPECT_EQ(RState::getMinorChar(20 + 256, 1), '[');
    for (const char character : {'@', '[', 'a', '\0', '\xC4'}) {
        EXPECT_EQ(RState::getMinorIndex(character, 1), 0) << character;
        EXPECT_EQ(RState::getMinorIndex(character, 2), 0) << character;
    }
    EXPECT_EQ(RState(1, INT_MAX, 0).getText().size(), 6U);
    EXPECT_EQ(RState(1, INT_MIN, 0).getText(), "R1@");
}

} // namespace
