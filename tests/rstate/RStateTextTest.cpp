#include "RState.h"
#include "RStateConstants.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <climits>
#include <sstream>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

struct Written
{
    int major;
    int minor;
    int verification;
    const char* text;
};

TEST(RStateFormat, ReportsEntryAndResult)
{
    const RState rstate(7, 5, 1);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.rstate 6 ENTER RState()\n",
                            "bsp.rstate 3 RState(): R-state: R7F01, version: 7.5.1\n"));
    recordingtrace::setLevel("bsp.rstate", 3);
    const RState noticed(1, 0, 0);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 3 RState(): R-state: R1A, version: 1.0.0\n"));
    recordingtrace::setLevel("bsp.rstate", 2);
    const RState silent(1, 0, 0);
    EXPECT_THAT(takeLines(), ElementsAre());
}

TEST(RStateFormat, WritesVersions)
{
    const Written rows[] = {
        {1, 0, 0, "R1A"},      {1, 0, 1, "R1A01"},     {1, 0, 9, "R1A09"},
        {1, 0, 10, "R1A10"},   {1, 0, 99, "R1A99"},    {1, 0, 100, "R1A100"},
        {1, 0, 999, "R1A999"}, {3, 1, 123, "R3B123"},  {9, 21, 0, "R9AC"},
        {7, 5, 1, "R7F01"},    {12, 37, 5, "R12BC05"}, {1, 19, 0, "R1Z"},
        {1, 20, 0, "R1AB"},    {1, 339, 0, "R1ZZ"},    {1, 340, 0, "R1ABB"},
        {1, 5459, 0, "R1ZZZ"}, {1, 5460, 0, "R1ABBA"}, {1, 107859, 0, "R1ZZZZ"},
    };
    for (const Written& row : rows) {
        RState rstate(row.major, row.minor, row.verification);
        EXPECT_EQ(rstate.getText(), row.text);
        EXPECT_EQ(rstate.getMajor(), row.major);
        EXPECT_EQ(rstate.getMinor(), row.minor);
        EXPECT_EQ(rstate.getVerification(), row.verification);
        EXPECT_TRUE(rstate.updateRState());
        EXPECT_EQ(rstate.getText(), row.text);
    }
}

TEST(RStateFormat, ChecksNoNumber)
{
    const Written rows[] = {
        {0, 0, 0, "R0A"},
        {-1, 0, 0, "R-1A"},
        {1, -1, 0, "R1@"},
        {1, 107860, 0, "R1[BBA"},
        {1, 107860 + 5120, 0, "R1\\BBA"},
        {1, 0, -1, "R1A"},
        {1, 0, INT_MIN, "R1A"},
        {1, 0, 1000, "R1A1000"},
        {INT_MIN, 107859, INT_MAX, "R-2147483648ZZZZ2147483647"},
        {INT_MAX, 0, 0, "R2147483647A"},
    };
    for (const Written& row : rows) {
        EXPECT_EQ(RState(row.major, row.minor, row.verification).getText(), row.text);
    }
}

TEST(RStateFormat, RebuildsTheTextOfAParsedLabel)
{
    for (const auto& [given, rebuilt] :
         {std::pair("R1A", "R1A"), std::pair("R1A00", "R1A"), std::pair("R1A1", "R1A01"),
          std::pair("R1A999", "R1A999"), std::pair("R1I", "R1J"), std::pair("R1AA", "R1AB"),
          std::pair("R001A01x", "R1A01"), std::pair("R1ABCDE01", "R1ABCD")})
    {
        RState rstate{std::string(given)};
        EXPECT_EQ(rstate.getText(), given);
        EXPECT_TRUE(rstate.updateRState());
        EXPECT_EQ(rstate.getText(), rebuilt);
    }
}

TEST(RStateFormat, StreamsTheTextOnly)
{
    std::ostringstream stream;
    stream << RState(std::string("R1A00")) << '|' << RState(2, 0, 1);
    EXPECT_EQ(stream.str(), "R1A00|R2A01");
}

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

TEST(RStateConstants, HaveTheirValuesAndAddressesForOlderUsers)
{
    std::vector<std::int32_t> values;
    for (const std::int32_t* constant : addressesOfConstants()) {
        values.push_back(*constant);
    }
    EXPECT_THAT(values, testing::ElementsAre(20, 340, 5460, 107860, 20, 16, 16, 20, 12));
}

TEST(RStateConstants, NumberTheIncrementTypes)
{
    EXPECT_EQ(static_cast<int>(IncrementType::Auto), 0);
    EXPECT_EQ(static_cast<int>(IncrementType::Revision), 1);
    EXPECT_EQ(static_cast<int>(IncrementType::Minor), 2);
    EXPECT_EQ(static_cast<int>(IncrementType::Major), 3);
    EXPECT_EQ(static_cast<int>(IncrementType::EndOfList), 4);
}

} // namespace
