/**
 * @file
 * @brief What the cases of faulty and of killed commands share: the board, a run without a fault.
 */
#ifndef TESTS_FAULTS_COMMANDTEST_H
#define TESTS_FAULTS_COMMANDTEST_H

#include "Commands.h"
#include "Namespaces.h"
#include "TracedProcess.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace faults
{

class CommandTest : public testing::TestWithParam<Command>
{
protected:
    void SetUp() override
    {
        if (!testsupport::haveNamespaces()) {
            GTEST_SKIP() << testsupport::NoNamespaces << "a traced program cannot be traced again";
        }
        ::setenv("BSP_BOARD_DIR", BoardDirectory, 1);
        ::setenv("QELTRACE_OUTPUT", TraceFile, 1);
        ::setenv("QELTRACE_LEVEL", "*=7", 1);
        makeBoard(GetParam());
        m_normal = runWatched(words(), std::nullopt);
        m_messages = messages();
        m_files = leftFiles();
        ASSERT_TRUE(endsSo(m_normal, GetParam().endings[0])) << describe(m_normal);
        ASSERT_FALSE(m_normal.calls.empty());
    }

    std::vector<std::string> words() const
    {
        std::vector<std::string> words = GetParam().words;
        words[0] = BSP_TEST_BIN_DIR "/" + words[0];
        return words;
    }

    bool endsNormally(const ProgramRun& run) const { return endsSo(run, GetParam().endings[0]); }

    bool changesSettings() const
    {
        return GetParam().name == "setRadiolinkMode" || GetParam().name == "clearRadiolinkMode";
    }

    /** What the settings are when the command has changed them. */
    std::string changedSettings() const
    {
        return GetParam().name == "setRadiolinkMode" ? "FpgaVariant=TwoTdm\nRadiolinkMode=Rl4\n"
                                                     : "FpgaVariant=TwoTdm\n";
    }

    ProgramRun m_normal;
    std::vector<std::string> m_messages;
    std::vector<std::string> m_files;
};

} // namespace faults

#endif
