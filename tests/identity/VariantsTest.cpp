#include "Bsp.h"
#include "FakeBoard.h"
#include "Messages.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <set>

namespace
{

using namespace fakeboard;
using os::bsp::NxuHwCode;
using recordingtrace::takeLines;
using namespace testing;

constexpr std::size_t PlatformWord = 1;
constexpr std::size_t ControlBackplaneWord = 2;
constexpr std::size_t TrafficWord = 3;
constexpr std::size_t DspWord = 5;

/** The board's hardware code has this word, no variant has the code. */
void setForeignWord(std::size_t index, int value)
{
    NxuHwCode code{};
    code.word[index] = value;
    fakeboard::setCode(code);
    variant(0).code.word[index] = 77;
}

/** The hardware code cannot be read and is the default variant's, with this word. */
void setDefaultWord(std::size_t index, int value)
{
    fakeboard::eeprom().result = 1;
    variant(14).code.word[index] = value;
}

template <typename Enumeration> std::function<int()> asInt(Enumeration (*query)())
{
    return [query] { return static_cast<int>(query()); };
}

/** One query that decides on a word of the hardware code. */
struct WordQuery
{
    const char* name;
    std::size_t word;
    std::function<int()> ask;
    std::function<int()> askFromC;
    std::vector<std::string> entry; /**< What it writes at its beginning. */
    std::map<int, int> known;       /**< The answers to the values that it knows. */
    std::set<int> unknown;          /**< Some that it does not know, */
    int answer;                     /**< the answer to all of them, */
    const char* complaint;          /**< and what it writes then. */
    bool quotesTheCode;
};

WordQuery query(const char* name, std::size_t word, const std::function<int()>& ask,
                const std::function<int()>& askFromC, const std::vector<std::string>& entry,
                const std::map<int, int>& known, const std::set<int>& unknown, int answer,
                const char* complaint, bool quotesTheCode = false)
{
    return {name, word, ask, askFromC, entry, known, unknown, answer, complaint, quotesTheCode};
}

const WordQuery wordQueries[] = {
    query("getTrafFpgaType", TrafficWord, asInt(os::bsp::getTrafFpgaType), Bsp_getTrafFpgaType, {},
          {{0, 6}, {3, 12}, {4, 14}, {5, 15}, {6, 17}, {7, 18}, {8, 19}}, {1, 2, 9, 255}, 23,
          "Not supported traffic FPGA: "),
    query("getDspType", DspWord, asInt(os::bsp::getDspType), Bsp_getDspType,
          {"bsp.core 6 ENTER getDspType()"}, {{0, 4}, {2, 5}, {4, 6}}, {1, 3, 5, 255}, 7,
          "Unknown dspType: "),
    query("getPlatformType", PlatformWord, asInt(os::bsp::getPlatformType), Bsp_getPlatformType, {},
          {{0, 1}, {1, 2}}, {2, 255}, 3, "Unknown platformType: "),
    query("getTrafficBackplane", TrafficWord, asInt(os::bsp::getTrafficBackplane),
          Bsp_getTrafficBackplane, {}, {{0, 1}, {3, 2}, {4, 2}, {5, 2}, {6, 2}, {7, 2}, {8, 2}},
          {1, 2, 9, 255}, 3, "Unknown backplaneType: "),
    query("getControlBackplane", ControlBackplaneWord, asInt(os::bsp::getControlBackplane),
          Bsp_getControlBackplane, {}, {{0, 1}, {1, 2}, {2, 3}}, {3, 255}, 4,
          "Unknown backplaneType: "),
    query("getNumberOfRadiolinks", TrafficWord, os::bsp::getNumberOfRadiolinks, Bsp_getNumberOfRlt,
          {"bsp.core 6 ENTER getNumberOfRadiolinks()"},
          {{0, 2}, {3, 2}, {4, 1}, {5, 2}, {6, 2}, {7, 1}, {8, 2}}, {1, 2, 9, 255}, 2,
          "Unknown traf type: ", true),
};

/** A value of a query's word. */
struct Case
{
    const WordQuery* query;
    int value;

    friend std::ostream& operator<<(std::ostream& stream, const Case& each)
    {
        return stream << each.query->name << ' ' << each.value;
    }
};

std::vector<Case> cases(bool areKnown)
{
    std::vector<Case> result;
    for (const WordQuery& query : wordQueries) {
        for (int value = 0; value < 256; ++value) {
            if (areKnown ? query.known.count(value) == 1 : query.unknown.count(value) == 1) {
                result.push_back({&query, value});
            }
        }
    }
    return result;
}

std::string nameOf(const TestParamInfo<Case>& info)
{
    return info.param.query->name + std::to_string(info.param.value);
}

std::vector<std::string> operator+(std::vector<std::string> lines, const std::string& line)
{
    lines.push_back(line);
    return lines;
}

class Word : public TestWithParam<Case>
{
protected:
    std::string complaint(int quoted) const
    {
        return std::string("bsp.core 1 ") + query.name + "(): " + query.complaint +
               std::to_string(quoted);
    }
    int answer() const { return query.known.at(value); }

    const WordQuery& query = *GetParam().query;
    const int value = GetParam().value;
};
using KnownWord = Word;
using UnknownWord = Word;

TEST_P(KnownWord, HasItsAnswer)
{
    setWord(query.word, value);
    EXPECT_EQ(query.ask(), answer());
    EXPECT_EQ(takeLines(), query.entry);
    EXPECT_EQ(query.askFromC(), answer());
    EXPECT_EQ(takeLines(), query.entry);
}

TEST_P(KnownWord, IsTakenFromTheCodeNotFromTheVariant)
{
    setForeignWord(query.word, value);
    EXPECT_EQ(query.ask(), answer());
    EXPECT_EQ(takeLines(), query.entry);
}

TEST_P(KnownWord, IsTakenFromTheDefaultWhenTheCodeCannotBeRead)
{
    setDefaultWord(query.word, value);
    EXPECT_EQ(query.ask(), answer());
    EXPECT_EQ(takeLines(), query.entry + readFailed(1));
}

INSTANTIATE_TEST_SUITE_P(Of, KnownWord, ValuesIn(cases(true)), nameOf);

TEST_P(UnknownWord, IsReportedAtEveryCall)
{
    setWord(query.word, value);
    EXPECT_EQ(query.ask(), query.answer);
    EXPECT_EQ(takeLines(), query.entry + complaint(value));
    EXPECT_EQ(query.askFromC(), query.answer);
    EXPECT_EQ(takeLines(), query.entry + complaint(value));
}

TEST_P(UnknownWord, IsQuotedAsTheVariantHasItWhenNoneHasTheCode)
{
    setForeignWord(query.word, value);
    EXPECT_EQ(query.ask(), query.answer);
    if (query.quotesTheCode) {
        EXPECT_EQ(takeLines(), query.entry + complaint(value));
    } else {
        EXPECT_EQ(takeLines(), query.entry + invalidVariant + complaint(77));
        query.ask();
        EXPECT_EQ(takeLines(), query.entry + complaint(77));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, UnknownWord, ValuesIn(cases(false)), nameOf);

TEST(UnknownWord, MayBeNegativeInTheDefault)
{
    setDefaultWord(TrafficWord, -1);
    EXPECT_EQ(Bsp_getTrafFpgaType(), 23);
    EXPECT_THAT(
        takeLines(),
        ElementsAre(readFailed(1), "bsp.core 1 getTrafFpgaType(): Not supported traffic FPGA: -1"));
}

TEST(UnknownWord, IsNotLookedUpForADisabledMessage)
{
    recordingtrace::setLevel("bsp.core", 0);
    int comparisons = 0;
    fakeboard::setEquality([&comparisons](const auto& /*row*/, const auto& /*code*/) {
        ++comparisons;
        return true;
    });
    EXPECT_EQ(Bsp_getPlatformType(), 3);
    EXPECT_EQ(comparisons, 0);
}

TEST(NumberOfChannels, ReportsAnUnknownProductTwiceAndThenItself)
{
    variant(1).productCode = 8;
    EXPECT_EQ(os::bsp::getNumberOfChannels(), 1U);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER getNumberOfChannels()",
                                         "bsp.core 1 getProductId(): Unknown product ID: 8",
                                         "bsp.core 1 getProductId(): Unknown product ID: 8",
                                         "bsp.core 1 getNumberOfChannels(): Unknown product id: 18",
                                         "bsp.core 7 getNumberOfChannels(): numberOfChannels = 1"));
}

TEST(NumberOfChannels, ReportsTheVariantFirst)
{
    fakeboard::setCode({{1, 2, 3, 4, 5, 6, 7, 8}});
    variant(0).productCode = 11;
    EXPECT_EQ(os::bsp::getNumberOfChannels(), 2U);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER getNumberOfChannels()", invalidVariant,
                                         "bsp.core 7 getNumberOfChannels(): numberOfChannels = 2"));
}

TEST(SwitchType, IsNoneWithoutALookAtTheBoard)
{
    EXPECT_EQ(os::bsp::getSwitchType(), os::bsp::SwitchType::None);
    EXPECT_EQ(Bsp_getSwitchType(), 0);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER getSwitchType()",
                                         "bsp.core 6 ENTER getSwitchType()"));
    EXPECT_EQ(fakeboard::eeprom().reads, 0);
}

} // namespace
