/**
 * @file
 * @brief Calls that are made while static objects are made, before those of the archive.
 */
#include "RState.h"
#include "RecordingTrace.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

using testing::ElementsAre;
using testing::Pair;

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
