/**
 * @file
 * @brief Runs the tool on a board that its environment describes: see BoardFromEnvironment.cpp and
 * ScriptedAnswers.cpp for the variables.
 */
#ifndef TESTS_TOOL_BSPTOOL_H
#define TESTS_TOOL_BSPTOOL_H

#include "Program.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace bsptool
{

using Environment = std::map<std::string, std::string>;

/** The tool under the name "bsp". */
inline testsupport::Program bsp(std::vector<std::string> arguments, Environment environment = {})
{
    testsupport::Program program{};
    program.path = BSP_TEST_FAKE_BOARD_TOOL;
    program.name = "bsp";
    program.arguments = std::move(arguments);
    program.environment = std::move(environment);
    return program;
}

/** An answer: one line and success. */
inline void expectAnswer(const testsupport::Outcome& outcome, const std::string& line)
{
    EXPECT_EQ(outcome.out, line + '\n');
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

inline void expectSilence(const testsupport::Outcome& outcome)
{
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

inline void expectError(const testsupport::Outcome& outcome, const std::string& line)
{
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, line + '\n');
    EXPECT_EQ(outcome.status, 1);
}

} // namespace bsptool

#endif
