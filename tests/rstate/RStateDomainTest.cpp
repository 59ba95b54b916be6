#include "RState.h"
#include "RecordingTrace.h"

#include <gtest/gtest.h>

#include <array>
#include <unordered_map>

namespace
{

// The model: labels in the order in which they are given out, and tables instead of arithmetic.

/** What each letter from A to Z counts as, at the first to the fourth position. */
const std::array<std::string, 4> letterCountsAs{
    "ABCDEFGHJJKLMNSSSSSTUVXXYZ", "BBCDFFGHJJKLMNSSSSSTVVXXZZ", "BBCDFFGHJJKLMNSSSSSTVVXXZZ",
    "ABCDEFGHJJKLMNSSSSSTUVXXYZ"};
const std::array<std::string, 4> alphabets{"ABCDEFGHJKLMNSTUVXYZ", "BCDFGHJKLMNSTVXZ",
                                           "BCDFGHJKLMNSTVXZ", "ABCDEFGHJKLMNSTUVXYZ"};

void appendLetters(std::vector<std::string>& all, const std::string& prefix, std::size_t length)
{
    if (prefix.size() == length) {
        all.push_back(prefix);
        return;
    }
    for (const char letter : alphabets[prefix.size()]) {
        appendLetters(all, prefix + letter, length);
    }
}

/** The letters of each minor. */
std::vector<std::string> lettersOfMinors()
{
    std::vector<std::string> all;
    for (std::size_t length = 1; length <= 4; ++length) {
        appendLetters(all, "", length);
    }
    return all;
}

struct Version
{
    int major;
    int minor;
    int verification;
};

constexpr int LastMinor = 107859;

Version withNextMinor(const Version& version)
{
    return version.minor == LastMinor
               ? Version{version.major + 1, 0, version.verification}
               : Version{version.major, version.minor + 1, version.verification};
}

Version withNextVerification(const Version& version)
{
    if (version.verification == 999) {
        return withNextMinor({version.major, version.minor, 1});
    }
    return {version.major, version.minor, version.verification + 1};
}

Version stepped(const Version& version, IncrementType type)
{
    const int restarted = version.verification == 0 ? 0 : 1;
    switch (type) {
    case IncrementType::Auto:
        return version.verification == 0 ? withNextMinor(version) : withNextVerification(version);
    case IncrementType::Revision:
        return version.verification == 0 ? version : withNextVerification(version);
    case IncrementType::Minor:
        return withNextMinor({version.major, version.minor, restarted});
    case IncrementType::Major:
    case IncrementType::EndOfList:
        break;
    }
    return {version.major + 1, 0, restarted};
}

std::string textOf(const Version& version, const std::vector<std::string>& letters)
{
    static const std::unordered_map<int, std::string> verifications{
        {0, ""}, {1, "01"}, {2, "02"}, {99, "99"}, {100, "100"}, {998, "998"}, {999, "999"}};
    return 'R' + std::to_string(version.major) + letters[static_cast<std::size_t>(version.minor)] +
           verifications.at(version.verification);
}

bool holds(const RState& rstate, const Version& version, const std::string& text)
{
    return rstate.getMajor() == version.major && rstate.getMinor() == version.minor &&
           rstate.getVerification() == version.verification && rstate.getText() == text;
}

constexpr std::array<int, 5> Verifications{0, 1, 99, 998, 999};

class RStateDomain : public testing::Test
{
protected:
    RStateDomain()
    {
        recordingtrace::setLevel("bsp.rstate", 1);
        EXPECT_EQ(m_letters.size(), LastMinor + 1U);
    }

    /** Steps every minor with every verification by that type. */
    void expectSteps(IncrementType type) const
    {
        for (int minor = 0; minor <= LastMinor; ++minor) {
            for (const int verification : Verifications) {
                const Version version{7, minor, verification};
                const Version next = stepped(version, type);
                RState rstate(7, minor, verification);
                rstate.increment(type);
                ASSERT_TRUE(holds(rstate, next, textOf(next, m_letters)))
                    << textOf(version, m_letters) << " became " << rstate;
            }
        }
    }

    const std::vector<std::string> m_letters = lettersOfMinors();
};

/** The next string of letters, "ZZZ" being followed by "AAAA"; empty after "ZZZZ". */
std::string nextString(std::string letters)
{
    for (auto letter = letters.rbegin(); letter != letters.rend(); ++letter) {
        if (*letter != 'Z') {
            ++*letter;
            return letters;
        }
        *letter = 'A';
    }
    return letters.size() == 4 ? "" : letters + 'A';
}

TEST_F(RStateDomain, ReadsEveryStringOfLetters)
{
    std::unordered_map<std::string, int> minors;
    for (const std::string& letters : m_letters) {
        minors.emplace(letters, static_cast<int>(minors.size()));
    }
    int count = 0;
    for (std::string letters = "A"; !letters.empty(); letters = nextString(letters)) {
        std::string canonical;
        for (const char letter : letters) {
            canonical += letterCountsAs[canonical.size()][static_cast<std::size_t>(letter - 'A')];
        }
        const std::string text = "R3" + letters;
        RState rstate(text);
        ASSERT_TRUE(holds(rstate, {3, minors.at(canonical), 0}, text)) << text;
        ASSERT_TRUE(rstate.updateVersion()) << text;
        rstate.updateRState();
        ASSERT_EQ(rstate.getText(), "R3" + canonical);
        ++count;
    }
    EXPECT_EQ(count, 475254);
}

TEST_F(RStateDomain, WritesAndReadsBackEveryMinor)
{
    for (int minor = 0; minor <= LastMinor; ++minor) {
        for (const int verification : Verifications) {
            const Version version{7, minor, verification};
            const std::string text = textOf(version, m_letters);
            ASSERT_TRUE(holds(RState(7, minor, verification), version, text)) << text;
            ASSERT_TRUE(holds(RState(text), version, text)) << text;
        }
    }
}

TEST_F(RStateDomain, StepsEveryMinorByAuto)
{
    expectSteps(IncrementType::Auto);
}

TEST_F(RStateDomain, StepsEveryMinorByRevision)
{
    expectSteps(IncrementType::Revision);
}

TEST_F(RStateDomain, StepsEveryMinorByMinor)
{
    expectSteps(IncrementType::Minor);
}

TEST_F(RStateDomain, StepsEveryMinorByMajor)
{
    expectSteps(IncrementType::Major);
}

} // namespace
