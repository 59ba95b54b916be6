#include "BoardToolTest.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

void BoardToolTest::expectQuiet(Words words) const
{
    const testsupport::Outcome outcome = run(std::move(words));
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 0);
}

void BoardToolTest::expectRefusal(Words words, const std::string& complaint, int status) const
{
    const testsupport::Outcome outcome = run(std::move(words));
    EXPECT_EQ(outcome.err, complaint);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, status);
}

BoardToolTest::Words BoardToolTest::wordsToRun(const std::string& board, const std::string& program,
                                               const Words& arguments)
{
    std::istringstream emulator(BSP_TEST_EMULATOR);
    Words words{"run", board, "--"};
    words.insert(words.end(), std::istream_iterator<std::string>(emulator), {});
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

std::vector<std::string> BoardToolTest::entries(const std::string& directory) const
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(file(directory))) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> BoardToolTest::everything() const
{
    std::vector<std::string> lines;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_directory.path())) {
        std::string line = entry.path().lexically_relative(m_directory.path()).string();
        if (entry.is_regular_file()) {
            line += '=' + testsupport::readFile(entry.path().string());
        }
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}
