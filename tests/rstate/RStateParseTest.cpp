#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace
{

using recordingtrace::takeLines;
using testing::ElementsAre;

struct Accepted
{
    const char* text;
    int major;
    int minor;
    int verification;
};

void expectVersion(const RState& rstate, int major, int minor, int verification)
{
    EXPECT_EQ(rstate.getMajor(), major) << rstate;
    EXPECT_EQ(rstate.getMinor(), minor) << rstate;
    EXPECT_EQ(rstate.getVerification(), verification) << rstate;
}

std::string result(const std::string& text, const std::string& version)
{
    return "bsp.rstate 4 RState(): R-state: " + text + ", version: " + version + "\n";
}

/** Expects that the text is refused with that message, and what it leaves in the version. */
void expectRefused(const std::string& text, const std::string& message, const Accepted& left)
{
    RState rstate(text);
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 6 ENTER RState()\n",
                                         "bsp.rstate 1 updateVersion(): " + message + "\n",
                                         result(text, std::to_string(left.major) + '.' +
                                                          std::to_string(left.minor) + '.' +
                                                          std::to_string(left.verification))));
    EXPECT_EQ(rstate.getText(), text);
    expectVersion(rstate, left.major, left.minor, left.verification);
    EXPECT_FALSE(rstate.updateVersion());
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 1 updateVersion(): " + message + "\n"));
}

/** A version whose text, built from it, is refused or read otherwise. */
void expectReparsed(RState rstate, bool valid, const Accepted& left)
{
    takeLines();
    EXPECT_EQ(rstate.getText(), left.text);
    EXPECT_EQ(rstate.updateVersion(), valid) << rstate;
    expectVersion(rstate, left.major, left.minor, left.verification);
    takeLines();
}

TEST(RStateParse, LeavesWhatItDidNotReach)
{
    expectReparsed(RState(-1, 3, 5), false, {"R-1D05", -1, 3, 5});
    expectReparsed(RState(0, 3, 5), false, {"R0D05", 0, 3, 5});
    expectReparsed(RState(1, -1, 7), false, {"R1@07", 1, -1, 7});
}

TEST(RStateParse, StoresAMajorThatItRefuses)
{
    RState rstate(0, 107860, 0);
    rstate.normalizeVersion();
    expectReparsed(rstate, false, {"R0[BBA", 0, 0, 0});
}

TEST(RStateParse, SetsAMissingVerificationToNone)
{
    expectReparsed(RState(1, 0, -5), true, {"R1A", 1, 0, 0});
}

TEST(RStateParse, TakesATextForAnRState)
{
    const std::string text = "R1A01";
    const RState rstate = text;
    EXPECT_TRUE(rstate == text);
    takeLines();
}

TEST(RStateParse, ReportsEntryAndResult)
{
    const RState rstate(std::string("R1A01"));
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.rstate 6 ENTER RState()\n", result("R1A01", "1.0.1")));
}

void expectAccepted(const std::vector<Accepted>& rows)
{
    for (const Accepted& row : rows) {
        RState rstate{std::string(row.text)};
        expectVersion(rstate, row.major, row.minor, row.verification);
        EXPECT_EQ(rstate.getText(), row.text);
        EXPECT_TRUE(rstate.updateVersion()) << row.text;
    }
}

TEST(RStateParse, AcceptsLabels)
{
    const std::vector<Accepted> rows = {
        {"R1A", 1, 0, 0},      {"R1A01", 1, 0, 1},     {"R9AC", 9, 21, 0},
        {"R7F01", 7, 5, 1},    {"R1AG", 1, 24, 0},     {"R12BC05", 12, 37, 5},
        {"R1B", 1, 1, 0},      {"R1Z", 1, 19, 0},      {"R1AB", 1, 20, 0},
        {"R1BB", 1, 36, 0},    {"R1ZZ", 1, 339, 0},    {"R1ABB", 1, 340, 0},
        {"R1ZZZ", 1, 5459, 0}, {"R1ABBA", 1, 5460, 0}, {"R1ZZZZ", 1, 107859, 0},
        {"R1A00", 1, 0, 0},    {"R1A000", 1, 0, 0},    {"R1A1", 1, 0, 1},
        {"R1A0001", 1, 0, 1},  {"R1A999", 1, 0, 999},  {"R1A0999", 1, 0, 999},
        {"R001A", 1, 0, 0},
    };
    expectAccepted(rows);
    expectAccepted({{"R2147483647A", 2147483647, 0, 0}});
}

TEST(RStateParse, TakesALetterOutsideTheAlphabetForTheNextOne)
{
    const std::vector<Accepted> rows = {
        {"R1I", 1, 8, 0},   {"R1J", 1, 8, 0},   {"R1O", 1, 13, 0},  {"R1P", 1, 13, 0},
        {"R1Q", 1, 13, 0},  {"R1R", 1, 13, 0},  {"R1S", 1, 13, 0},  {"R1W", 1, 17, 0},
        {"R1X", 1, 17, 0},  {"R1AA", 1, 20, 0}, {"R1AE", 1, 23, 0}, {"R1AF", 1, 23, 0},
        {"R1AU", 1, 33, 0}, {"R1AV", 1, 33, 0}, {"R1AY", 1, 35, 0}, {"R1AZ", 1, 35, 0},
    };
    expectAccepted(rows);
}

TEST(RStateParse, IgnoresWhatFollows)
{
    const std::vector<Accepted> rows = {
        {"R1A01x", 1, 0, 1}, {"R1A01A", 1, 0, 1},  {"R1A ", 1, 0, 0},
        {"R1A-01", 1, 0, 0}, {"R1A\xC4", 1, 0, 0}, {"R1Aa", 1, 0, 0},
    };
    expectAccepted(rows);
}

TEST(RStateParse, ReadsNoMoreThanFourLetters)
{
    const int minorOfABCD = 5460 + 320 * 0 + 20 * 1 + 3;
    RState five(std::string("R1ABCDE"));
    expectVersion(five, 1, minorOfABCD, 0);
    EXPECT_TRUE(five.updateVersion());
    RState fiveAndDigits(std::string("R1ABCDE01"));
    expectVersion(fiveAndDigits, 1, minorOfABCD, 0);
    EXPECT_TRUE(fiveAndDigits.updateVersion());
    expectVersion(RState(std::string("R1ABCD01")), 1, minorOfABCD, 1);
}

TEST(RStateParse, StopsAtAnEmbeddedNul)
{
    expectVersion(RState(std::string("R1A\0B01", 7)), 1, 0, 0);
    takeLines();
    RState rstate(std::string("R1\0A", 4));
    EXPECT_THAT(takeLines(1),
                ElementsAre("bsp.rstate 1 updateVersion(): No R-state letter(s) after number\n"));
    expectVersion(rstate, 1, 0, 0);
}

TEST(RStateParse, RefusesATextThatDoesNotBeginWithR)
{
    for (const char* text : {"r1A", "", "1A", " R1A", "foo",
                             "\xD2"
                             "1A"})
    {
        expectRefused(text, "First letter not R", {"", 0, 0, 0});
    }
}

TEST(RStateParse, RefusesATextWithoutADigitAfterR)
{
    for (const char* text : {"RA1", "R", "R-1A", "R+1A", "R 1A",
                             "R\xB1"
                             "A",
                             "RR1A"})
    {
        expectRefused(text, "No digit after R", {"", 0, 0, 0});
    }
}

TEST(RStateParse, RefusesTheNumber0)
{
    for (const char* text : {"R0A", "R00A", "R0", "R0A01"}) {
        expectRefused(text, "R-state number not larger than 0", {"", 0, 0, 0});
    }
}

TEST(RStateParse, RefusesATextWithoutLetters)
{
    for (const char* text : {"R1", "R1a", "R1 A", "R1-A", "R1\xC4", "R1[", "R1@"}) {
        expectRefused(text, "No R-state letter(s) after number", {"", 1, 0, 0});
    }
    expectRefused("R5", "No R-state letter(s) after number", {"", 5, 0, 0});
}

TEST(RStateParse, RefusesAVerificationOf1000ButKeepsIt)
{
    expectRefused("R1A1000", "Illegal verification state: 1000", {"", 1, 0, 1000});
    expectRefused("R2ABB1001", "Illegal verification state: 1001", {"", 2, 340, 1001});
}

TEST(RStateParse, ReadsNumbersTooLargeFor32BitsAsTheLargest)
{
    for (const char* text : {"R2147483647A", "R2147483648A", "R4294967297A", "R99999999999A",
                             "R99999999999999999999999999999A"})
    {
        expectVersion(RState(std::string(text)), 2147483647, 0, 0);
    }
    takeLines();
    for (const char* text :
         {"R1A2147483647", "R1A2147483648", "R1A4294967296", "R1A99999999999999999999999999999"})
    {
        expectRefused(text, "Illegal verification state: 2147483647", {"", 1, 0, 2147483647});
    }
}

TEST(RStateParse, LeavesErrnoAlone)
{
    errno = ENOENT;
    const RState refused(std::string("R1A99999999999999999999"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(takeLines().size(), 3U);
}

TEST(RStateParse, SaysNothingBelowTheChannelsLevel)
{
    const RState first(std::string("R1A"));
    takeLines();
    recordingtrace::setLevel("bsp.rstate", 3);
    const RState silent(std::string("R1A"));
    EXPECT_THAT(takeLines(), ElementsAre());
    const RState refused(std::string("r1A"));
    EXPECT_THAT(takeLines(), ElementsAre("bsp.rstate 1 updateVersion(): First letter not R\n"));
    recordingtrace::setLevel("bsp.rstate", 4);
    const RState reported(std::string("R1A"));
    EXPECT_THAT(takeLines(), ElementsAre(result("R1A", "1.0.0")));
    recordingtrace::setLevel("bsp.rstate", 0);
    const RState off(std::string("r1A"));
    EXPECT_THAT(takeLines(), ElementsAre());
}

} // namespace
