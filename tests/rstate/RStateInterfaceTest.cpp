#include "Allocations.h"
#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>
#include <cstring>

namespace
{

using recordingtrace::takeLines;
using testsupport::countedAllocations;
using namespace testing;

/** A caller's buffer, filled so that every byte written can be seen. */
struct Buffer
{
    explicit Buffer(const char* text)
    {
        std::memset(bytes, '#', sizeof bytes);
        std::strcpy(bytes, text); // NOLINT(clang-analyzer-security.insecureAPI.strcpy): fits
    }
    /** The bytes as they are, NULs included. */
    std::string all() const { return std::string(bytes, sizeof bytes); }

    char bytes[RState::MaxRStateLen];
};

TEST(RStateC, ReadsAVersion)
{
    int major = -1;
    int minor = -1;
    int verification = -1;
    EXPECT_EQ(RState_toVersion("R9AC", &major, &minor, &verification), 1);
    EXPECT_EQ(major, 9);
    EXPECT_EQ(minor, 21);
    EXPECT_EQ(verification, 0);
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.rstate 6 ENTER RState()\n",
                            "bsp.rstate 4 RState(): R-state: R9AC, version: 9.21.0\n"));
}

TEST(RStateC, ReadsWhatItCanOfATextThatIsNoRState)
{
    struct
    {
        const char* text;
        std::array<int, 3> version;
    } const rows[] = {
        {"foo", {0, 0, 0}}, {"", {0, 0, 0}}, {"R5", {5, 0, 0}}, {"R1B1000", {1, 1, 1000}}};
    for (const auto& row : rows) {
        std::array<int, 3> version{-1, -1, -1};
        EXPECT_EQ(RState_toVersion(row.text, &version[0], &version[1], &version[2]), 1);
        EXPECT_THAT(version, testing::ElementsAreArray(row.version)) << row.text;
        EXPECT_EQ(takeLines(1).size(), 1U) << row.text;
    }
}

TEST(RStateC, WritesAVersion)
{
    Buffer buffer("");
    EXPECT_EQ(RState_fromVersion(buffer.bytes, 7, 5, 1), 1);
    EXPECT_EQ(buffer.all(), std::string("R7F01\0######", 12));
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.rstate 6 ENTER RState()\n",
                            "bsp.rstate 3 RState(): R-state: R7F01, version: 7.5.1\n"));
}

TEST(RStateC, StepsInPlace)
{
    Buffer buffer("R1A01");
    EXPECT_EQ(RState_increment(buffer.bytes, sizeof buffer.bytes, IncrementType::Auto), 1);
    EXPECT_EQ(buffer.all(), std::string("R1A02\0######", 12));
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 4 RState(): R-state: R1A01, version: 1.0.1\n",
                                         "bsp.rstate 6 ENTER increment(Auto)\n"));
    Buffer unparsable("foo");
    EXPECT_EQ(RState_increment(unparsable.bytes, 12, IncrementType::Major), 1);
    EXPECT_STREQ(unparsable.bytes, "R1A");
    takeLines();
}

TEST(RStateC, NeedsRoomForTheTextAndItsNul)
{
    Buffer buffer("R1Z");
    const std::string before = buffer.all();
    EXPECT_EQ(RState_increment(buffer.bytes, 4, IncrementType::Auto), 0);
    EXPECT_EQ(RState_increment(buffer.bytes, 0, IncrementType::Auto), 0);
    EXPECT_EQ(RState_increment2(buffer.bytes, 4, "Auto"), 0);
    EXPECT_EQ(buffer.all(), before);
    EXPECT_EQ(RState_increment(buffer.bytes, 5, IncrementType::Auto), 1);
    EXPECT_EQ(buffer.all(), std::string("R1AB\0#######", 12));
}

TEST(RStateC, CopiesTheUnchangedTextForATypeThatIsNone)
{
    for (const int type : {4, -1, INT_MIN}) {
        Buffer buffer("R1I");
        EXPECT_EQ(RState_increment(buffer.bytes, 4, static_cast<IncrementType>(type)), 1);
        EXPECT_STREQ(buffer.bytes, "R1I");
        EXPECT_THAT(takeLines(1), ElementsAre("bsp.rstate 1 increment(" + std::to_string(type) +
                                              "): Invalid parameter\n"));
        EXPECT_EQ(RState_increment(buffer.bytes, 3, static_cast<IncrementType>(type)), 0);
        takeLines();
    }
}

TEST(RStateC, StepsByTheNameOfAType)
{
    struct
    {
        const char* name;
        const char* after;
    } const rows[] = {
        {"Auto", "R1B06"}, {"Revision", "R1B06"}, {"Minor", "R1C01"}, {"Major", "R2A01"}};
    for (const auto& row : rows) {
        Buffer buffer("R1B05");
        EXPECT_EQ(RState_increment2(buffer.bytes, 6, row.name), 1) << row.name;
        EXPECT_STREQ(buffer.bytes, row.after) << row.name;
    }
}

TEST(RStateC, RefusesAnyOtherNameWithoutReadingTheText)
{
    for (const char* name :
         {"auto", "AUTO", "EndOfList", "", "Aut", "Autos", " Auto", "0", "Revision "})
    {
        Buffer buffer("R1A");
        const std::string before = buffer.all();
        EXPECT_EQ(RState_increment2(buffer.bytes, 12, name), 0) << name;
        EXPECT_EQ(buffer.all(), before);
        EXPECT_THAT(takeLines(), ElementsAre()) << name;
    }
}

TEST(RStateC, HasANameForEachTypeAndOneForAllOtherNumbers)
{
    const std::array<const char*, 5> names{"Auto", "Revision", "Minor", "Major", "EndOfList"};
    for (int type = 0; type < 5; ++type) {
        EXPECT_STREQ(RState_incrementTypeName(type), names.at(static_cast<std::size_t>(type)));
    }
    for (const int other : {INT_MIN, -1, 5, INT_MAX}) {
        EXPECT_STREQ(RState_incrementTypeName(other), "EndOfList") << other;
    }
    EXPECT_THAT(takeLines(), ElementsAre());
}

TEST(RStateC, TakesANullTextForAnEmptyOne)
{
    std::array<int, 3> version{-1, -1, -1};
    EXPECT_EQ(RState_toVersion(nullptr, &version[0], &version[1], &version[2]), 1);
    EXPECT_THAT(version, ElementsAre(0, 0, 0));
    EXPECT_EQ(RState_compare(nullptr, "R1A"), -1);
    EXPECT_EQ(RState_compare("R1A", nullptr), 1);
    EXPECT_EQ(RState_compare(nullptr, nullptr), 0);
    EXPECT_EQ(takeLines(1).size(), 5U);
}

TEST(RStateC, RefusesToWriteToNull)
{
    EXPECT_EQ(RState_fromVersion(nullptr, 1, 0, 0), 0);
    EXPECT_EQ(RState_increment(nullptr, 12, IncrementType::Auto), 0);
    EXPECT_EQ(RState_increment2(nullptr, 12, "Auto"), 0);
    Buffer buffer("R1A");
    EXPECT_EQ(RState_increment2(buffer.bytes, 12, nullptr), 0);
    EXPECT_STREQ(buffer.bytes, "R1A");
    EXPECT_THAT(takeLines(), ElementsAre());
}

TEST(RStateAllocation, TakesNoneFromTheHeapWithTheChannelOff)
{
    recordingtrace::setLevel("bsp.rstate", 0);
    char text[RState::MaxRStateLen] = "R12ZZZZ999";
    RState_compare(text, text); // the first message settles the level

    const long before = countedAllocations();
    const int result = RState_compare(text, "R12ZZZZ998");
    RState_increment(text, sizeof text, IncrementType::Auto);
    RState_increment2(text, sizeof text, "Major");
    RState_fromVersion(text, 12, 107859, 999);
    RState_compare("no R-state", "R0A");
    const long after = countedAllocations();

    EXPECT_EQ(after, before);
    EXPECT_EQ(result, 1);
    EXPECT_STREQ(text, "R12ZZZZ999");
    const std::string counted(100, 'x');
    EXPECT_GT(countedAllocations(), after) << "allocations are counted";
}

struct Answers
{
    std::vector<std::pair<int, std::string>> byName;
    std::vector<std::string> entries;
};

const Answers early = [] {
    Answers answers;
    for (const char* name : {"", "Auto", "Revision", "Minor", "Major", "EndOfList"}) {
        char text[RState::MaxRStateLen] = "R2B05";
        const int result = RState_increment2(text, sizeof text, name);
        answers.byName.emplace_back(result, text);
    }
    for (const std::string& line : recordingtrace::takeLines()) {
        if (line.find(" increment(") != std::string::npos ||
            line.find("ENTER increment") != std::string::npos)
        {
            answers.entries.push_back(line);
        }
    }
    return answers;
}();

TEST(RStateEarly, IncrementsByName)
{
    EXPECT_THAT(early.byName, ElementsAre(Pair(0, "R2B05"), Pair(1, "R2B06"), Pair(1, "R2B06"),
                                          Pair(1, "R2C01"), Pair(1, "R3A01"), Pair(0, "R2B05")));
}

TEST(RStateEarly, NamesTheTypeInItsMessages)
{
    EXPECT_THAT(early.entries, ElementsAre("bsp.rstate 6 ENTER increment(Auto)\n",
                                           "bsp.rstate 6 ENTER increment(Revision)\n",
                                           "bsp.rstate 6 ENTER increment(Minor)\n",
                                           "bsp.rstate 6 ENTER increment(Major)\n"));
}

} // namespace
