#include "SimulatorTest.h"

#include "OtherUser.h"

#include <algorithm>

#include <unistd.h>

namespace fs = std::filesystem;

testsupport::Program SimulatorTest::boardToolOfOrdinaryUser(Words words) const
{
    testsupport::Program program = boardTool(std::move(words));
    if (::geteuid() != 0) {
        return program;
    }
    // Others may be unable to come to where it was built.
    const std::string copy = file("bsp-board");
    fs::copy_file(program.path, copy, fs::copy_options::overwrite_existing);
    fs::permissions(m_directory.path(), fs::perms::all);
    program.path = copy;
    program.prepare = testsupport::becomeOrdinaryUser;
    return program;
}

void SimulatorTest::expectQuiet(Words words) const
{
    EXPECT_EQ(run(std::move(words)), testsupport::answer());
}

void SimulatorTest::expectRefusal(Words words, const std::string& complaint, int status) const
{
    EXPECT_EQ(run(std::move(words)),
              testsupport::refusal("bsp-board: " + complaint + '\n', status));
}

void SimulatorTest::expectMisuse(const Words& words, const std::string& complaint,
                                 const std::optional<std::string>& command) const
{
    const std::string help = command.value_or(words.empty() ? "" : words.front());
    expectRefusal(
        words, complaint + "\nTry 'bsp-board " + help + (help.empty() ? "" : " ") + "--help'.", 2);
}

SimulatorTest::Words SimulatorTest::wordsToRun(const std::string& board, const std::string& program,
                                               const Words& arguments)
{
    const Words emulator = testsupport::emulator();
    Words words{"run", board, "--"};
    words.insert(words.end(), emulator.begin(), emulator.end());
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

std::vector<std::string> SimulatorTest::entries(const std::string& directory) const
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(file(directory))) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> SimulatorTest::everything(const std::string& directory) const
{
    std::vector<std::string> lines;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(file(directory))) {
        std::string line =
            entry.path().lexically_normal().lexically_relative(m_directory.path()).string();
        if (entry.is_regular_file()) {
            line += '=' + testsupport::readFile(entry.path().string());
        }
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}
