#ifndef TESTS_SIMULATOR_SIMULATORTEST_H
#define TESTS_SIMULATOR_SIMULATORTEST_H

#include "Files.h"
#include "Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** Runs bsp-board in a directory of the test case's own, in which boards have short names. */
class SimulatorTest : public testing::Test
{
protected:
    using Words = std::vector<std::string>;

    testsupport::Program boardTool(Words words) const
    {
        testsupport::Program program = testsupport::tool("bsp-board", std::move(words));
        program.directory = m_directory.path();
        program.environment = {{"QELTRACE_OUTPUT", "none"}};
        return program;
    }
    testsupport::Outcome run(Words words) const { return boardTool(std::move(words)).run(); }

    /** bsp-board for somebody who is not root, even when root runs the tests. */
    testsupport::Program boardToolOfOrdinaryUser(Words words) const;

    /** Runs it and expects that it succeeds without a word. */
    void expectQuiet(Words words) const;

    /** Runs it and expects that it only complains, behind its name. */
    void expectRefusal(Words words, const std::string& complaint, int status = 1) const;

    /**
     * Runs it and expects that it complains and tells where there is help.
     * @param command  the one with that help, when that is not the first word; "" is the tool
     */
    void expectMisuse(const Words& words, const std::string& complaint,
                      const std::optional<std::string>& command = std::nullopt) const;

    /** The words that run a program of this build on a board. */
    static Words wordsToRun(const std::string& board, const std::string& program,
                            const Words& arguments);

    std::string file(const std::string& name) const { return m_directory.file(name); }
    std::string contents(const std::string& name) const
    {
        return testsupport::readFile(file(name));
    }
    void write(const std::string& name, const std::string& contents) const
    {
        testsupport::writeFile(file(name), contents);
    }

    /** Names of what is in a directory, in order. */
    std::vector<std::string> entries(const std::string& directory) const;

    /** The paths of all that is in a directory, files with their contents. */
    std::vector<std::string> everything(const std::string& directory = ".") const;

    /** A 32-bit word as the board's registers and memory hold it. */
    static std::string word(std::uint32_t value) { return testsupport::bytesOf(value); }

private:
    testsupport::TemporaryDirectory m_directory;
};

#endif
