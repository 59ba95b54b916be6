#include "Bsp.h"
#include "FakeBoard.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <functional>

namespace
{

using namespace fakeboard;
using os::bsp::NxuHwCode;
using recordingtrace::takeLines;
using testing::ElementsAre;

constexpr std::size_t PlatformWord = 1;
constexpr std::size_t ControlBackplaneWord = 2;
constexpr std::size_t TrafficWord = 3;
constexpr std::size_t DspWord = 5;

constexpr const char* InvalidVariant = "bsp.core 1 operator()(): Invalid hardware variant";

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

/** One query that decides on a word of the hardware code. */
struct Query
{
    const char* name;
    std::size_t word;
    std::function<int()> ask;
    std::function<int()> askFromC;
    std::vector<std::string> entry; /**< What it writes at its beginning. */
};

template <typename Enumeration> std::function<int()> asInt(Enumeration (*query)())
{
    return [query] { return static_cast<int>(query()); };
}

const Query trafFpgaType{
    "getTrafFpgaType", TrafficWord, asInt(os::bsp::getTrafFpgaType), Bsp_getTrafFpgaType, {}};
const Query dspType{"getDspType",
                    DspWord,
                    asInt(os::bsp::getDspType),
                    Bsp_getDspType,
                    {"bsp.core 6 ENTER getDspType()"}};
const Query platformType{
    "getPlatformType", PlatformWord, asInt(os::bsp::getPlatformType), Bsp_getPlatformType, {}};
const Query trafficBackplane{"getTrafficBackplane",
                             TrafficWord,
                             asInt(os::bsp::getTrafficBackplane),
                             Bsp_getTrafficBackplane,
                             {}};
const Query controlBackplane{"getControlBackplane",
                             ControlBackplaneWord,
                             asInt(os::bsp::getControlBackplane),
                             Bsp_getControlBackplane,
                             {}};
const Query numberOfRadiolinks{"getNumberOfRadiolinks",
                               TrafficWord,
                               os::bsp::getNumberOfRadiolinks,
                               Bsp_getNumberOfRlt,
                               {"bsp.core 6 ENTER getNumberOfRadiolinks()"}};

std::vector<std::string> operator+(std::vector<std::string> lines, const std::string& line)
{
    lines.push_back(line);
    return lines;
}

struct Known
{
    const Query* query;
    int value;
    int answer;
};

void PrintTo(const Known& known, std::ostream* stream)
{
    *stream << known.query->name << ' ' << known.value << " is " << known.answer;
}

class KnownWord : public testing::TestWithParam<Known>
{};

TEST_P(KnownWord, HasItsAnswer)
{
    const Query& query = *GetParam().query;
    setWord(query.word, GetParam().value);
    EXPECT_EQ(query.ask(), GetParam().answer);
    EXPECT_EQ(takeLines(), query.entry);
    EXPECT_EQ(query.askFromC(), GetParam().answer);
    EXPECT_EQ(takeLines(), query.entry);
}

TEST_P(KnownWord, IsTakenFromTheCodeNotFromTheVariant)
{
    const Query& query = *GetParam().query;
    setForeignWord(query.word, GetParam().value);
    EXPECT_EQ(query.ask(), GetParam().answer);
    EXPECT_EQ(takeLines(), query.entry);
}

TEST_P(KnownWord, IsTakenFromTheDefaultWhenTheCodeCannotBeRead)
{
    const Query& query = *GetParam().query;
    setDefaultWord(query.word, GetParam().value);
    EXPECT_EQ(query.ask(), GetParam().answer);
    EXPECT_EQ(takeLines(),
              query.entry + "bsp.core 1 operator()(): e2prom_data_read() failed. Returned 1");
}

INSTANTIATE_TEST_SUITE_P(TrafFpgaType, KnownWord,
                         testing::Values(Known{&trafFpgaType, 0, 6}, Known{&trafFpgaType, 3, 12},
                                         Known{&trafFpgaType, 4, 14}, Known{&trafFpgaType, 5, 15},
                                         Known{&trafFpgaType, 6, 17}, Known{&trafFpgaType, 7, 18},
                                         Known{&trafFpgaType, 8, 19}));
INSTANTIATE_TEST_SUITE_P(DspType, KnownWord,
                         testing::Values(Known{&dspType, 0, 4}, Known{&dspType, 2, 5},
                                         Known{&dspType, 4, 6}));
INSTANTIATE_TEST_SUITE_P(PlatformType, KnownWord,
                         testing::Values(Known{&platformType, 0, 1}, Known{&platformType, 1, 2}));
INSTANTIATE_TEST_SUITE_P(
    TrafficBackplane, KnownWord,
    testing::Values(Known{&trafficBackplane, 0, 1}, Known{&trafficBackplane, 3, 2},
                    Known{&trafficBackplane, 4, 2}, Known{&trafficBackplane, 5, 2},
                    Known{&trafficBackplane, 6, 2}, Known{&trafficBackplane, 7, 2},
                    Known{&trafficBackplane, 8, 2}));
INSTANTIATE_TEST_SUITE_P(ControlBackplane, KnownWord,
                         testing::Values(Known{&controlBackplane, 0, 1},
                                         Known{&controlBackplane, 1, 2},
                                         Known{&controlBackplane, 2, 3}));
INSTANTIATE_TEST_SUITE_P(
    NumberOfRadiolinks, KnownWord,
    testing::Values(Known{&numberOfRadiolinks, 0, 2}, Known{&numberOfRadiolinks, 3, 2},
                    Known{&numberOfRadiolinks, 4, 1}, Known{&numberOfRadiolinks, 5, 2},
                    Known{&numberOfRadiolinks, 6, 2}, Known{&numberOfRadiolinks, 7, 1},
                    Known{&numberOfRadiolinks, 8, 2}));

struct Unknown
{
    const Query* query;
    int value;
    int answer;
    const char* message;
    bool quotesTheCode = false;
};

void PrintTo(const Unknown& unknown, std::ostream* stream)
{
    *stream << unknown.query->name << ' ' << unknown.value;
}

class UnknownWord : public testing::TestWithParam<Unknown>
{
protected:
    static std::string message(int quoted)
    {
        return std::string("bsp.core 1 ") + GetParam().query->name + "(): " + GetParam().message +
               std::to_string(quoted);
    }
};

TEST_P(UnknownWord, IsReportedAtEveryCall)
{
    const Query& query = *GetParam().query;
    setWord(query.word, GetParam().value);
    EXPECT_EQ(query.ask(), GetParam().answer);
    EXPECT_EQ(takeLines(), query.entry + message(GetParam().value));
    EXPECT_EQ(query.askFromC(), GetParam().answer);
    EXPECT_EQ(takeLines(), query.entry + message(GetParam().value));
}

TEST_P(UnknownWord, IsQuotedAsTheVariantHasItWhenNoneHasTheCode)
{
    const Query& query = *GetParam().query;
    setForeignWord(query.word, GetParam().value);
    EXPECT_EQ(query.ask(), GetParam().answer);
    if (GetParam().quotesTheCode) {
        EXPECT_EQ(takeLines(), query.entry + message(GetParam().value));
    } else {
        EXPECT_EQ(takeLines(), query.entry + InvalidVariant + message(77));
        query.ask();
        EXPECT_EQ(takeLines(), query.entry + message(77));
    }
}

INSTANTIATE_TEST_SUITE_P(
    TrafFpgaType, UnknownWord,
    testing::Values(Unknown{&trafFpgaType, 1, 23, "Not supported traffic FPGA: "},
                    Unknown{&trafFpgaType, 2, 23, "Not supported traffic FPGA: "},
                    Unknown{&trafFpgaType, 9, 23, "Not supported traffic FPGA: "},
                    Unknown{&trafFpgaType, 255, 23, "Not supported traffic FPGA: "}));
INSTANTIATE_TEST_SUITE_P(DspType, UnknownWord,
                         testing::Values(Unknown{&dspType, 1, 7, "Unknown dspType: "},
                                         Unknown{&dspType, 3, 7, "Unknown dspType: "},
                                         Unknown{&dspType, 5, 7, "Unknown dspType: "},
                                         Unknown{&dspType, 255, 7, "Unknown dspType: "}));
INSTANTIATE_TEST_SUITE_P(PlatformType, UnknownWord,
                         testing::Values(Unknown{&platformType, 2, 3, "Unknown platformType: "},
                                         Unknown{&platformType, 255, 3, "Unknown platformType: "}));
INSTANTIATE_TEST_SUITE_P(
    TrafficBackplane, UnknownWord,
    testing::Values(Unknown{&trafficBackplane, 1, 3, "Unknown backplaneType: "},
                    Unknown{&trafficBackplane, 2, 3, "Unknown backplaneType: "},
                    Unknown{&trafficBackplane, 9, 3, "Unknown backplaneType: "},
                    Unknown{&trafficBackplane, 255, 3, "Unknown backplaneType: "}));
INSTANTIATE_TEST_SUITE_P(
    ControlBackplane, UnknownWord,
    testing::Values(Unknown{&controlBackplane, 3, 4, "Unknown backplaneType: "},
                    Unknown{&controlBackplane, 255, 4, "Unknown backplaneType: "}));
INSTANTIATE_TEST_SUITE_P(
    NumberOfRadiolinks, UnknownWord,
    testing::Values(Unknown{&numberOfRadiolinks, 1, 2, "Unknown traf type: ", true},
                    Unknown{&numberOfRadiolinks, 2, 2, "Unknown traf type: ", true},
                    Unknown{&numberOfRadiolinks, 9, 2, "Unknown traf type: ", true},
                    Unknown{&numberOfRadiolinks, 255, 2, "Unknown traf type: ", true}));

TEST(UnknownWord, MayBeNegativeInTheDefault)
{
    setDefaultWord(TrafficWord, -1);
    EXPECT_EQ(Bsp_getTrafFpgaType(), 23);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.core 1 operator()(): e2prom_data_read() failed. Returned 1",
                            "bsp.core 1 getTrafFpgaType(): Not supported traffic FPGA: -1"));
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
    EXPECT_THAT(takeLines(), ElementsAre("bsp.core 6 ENTER getNumberOfChannels()", InvalidVariant,
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
