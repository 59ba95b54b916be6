/**
 * @file
 * @brief Every system call of every command fails once in each plausible way.
 *
 * A dry run learns which calls a command makes; the cases follow from that. After each fault the
 * answer, the messages and what is left behind are looked at, and the next run has to be right.
 */
#include "CommandTest.h"
#include "FailureTables.h"
#include "Files.h"
#include "PlausibleFaults.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <set>

#include <sys/syscall.h>

namespace
{

using namespace faults;

class CommandFaultsTest : public CommandTest
{
protected:
    void expectEnding(const ProgramRun& run, const Call& call, const Fault& fault) const
    {
        const auto& endings = GetParam().endings;
        const auto isRuns = [&](const Ending& ending) { return endsSo(run, ending); };
        if (faults::writesToStream(call)) {
            // What cannot be written is lost; the status stays.
            EXPECT_EQ(run.status, endings[0].status) << describe(run);
        } else if (fault.kind == Fault::IsShort) {
            EXPECT_TRUE(endsNormally(run)) << describe(run);
        } else {
            EXPECT_TRUE(std::any_of(endings.begin(), endings.end(), isRuns)) << describe(run);
        }
    }

    void expectMessages(const Fault& fault)
    {
        for (const std::string& message : messages()) {
            const bool isNormal =
                std::find(m_messages.begin(), m_messages.end(), message) != m_messages.end();
            const auto row = rowOf(GetParam().name, message, fault.error);
            if (!row.empty()) {
                m_rows.insert(row);
            } else {
                EXPECT_TRUE(isNormal || canVary(message)) << message;
            }
        }
    }

    void expectNothingLeft(const ProgramRun& run, const Call& call) const
    {
        // A name stays where it cannot be taken away, or cannot be seen to be the command's own.
        if (run.status <= 128 && !removesName(call) && call.number != SYS_newfstatat) {
            std::vector<std::string> files = leftFiles();
            if (call.number == SYS_fcntl) {
                // A lock may be another's by now, so it stays; the next one uses it.
                files.erase(std::remove(files.begin(), files.end(), "/tmp/board/settings.lock"),
                            files.end());
            }
            EXPECT_EQ(files, m_files);
        }
        if (run.status <= 128) {
            EXPECT_LE(run.openFiles.size(), m_normal.openFiles.size())
                << testing::PrintToString(run.openFiles);
        }
    }

    /** The settings are what they were or what they have to be. */
    void expectWholeSettings(const Fault& fault) const
    {
        // A file that is gone has no other settings.
        if (changesSettings() && fault.error != ENOENT) {
            EXPECT_THAT(testsupport::readFile(SettingsFile),
                        testing::AnyOf(Settings, changedSettings()));
        }
    }

    std::set<FailureRow> m_rows;
};

TEST_P(CommandFaultsTest, SurvivesEveryPlausibleFaultOfEveryCall)
{
    const std::vector<Fault> all = plausibleFaults(m_normal.calls);
    for (const Fault& fault : all) {
        const Call& call = m_normal.calls[fault.call];
        SCOPED_TRACE(describe(call, fault));
        makeBoard(GetParam());
        const ProgramRun faulty = runWatched(words(), fault);
        ASSERT_GT(faulty.calls.size(), fault.call);
        ASSERT_EQ(faulty.calls[fault.call].number, call.number);
        expectEnding(faulty, call, fault);
        expectMessages(fault);
        expectNothingLeft(faulty, call);
        expectWholeSettings(fault);
        const ProgramRun next = run(words());
        EXPECT_TRUE(endsNormally(next)) << "the next: " << describe(next);
    }
    for (const FailureRow& row : failuresOf(GetParam().name)) {
        EXPECT_THAT(m_rows, testing::Contains(row));
    }
    std::cout << GetParam().name << ": " << all.size() << " faults injected, " << m_rows.size()
              << " rows of the tables of failures seen\n";
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaultsTest, testing::ValuesIn(commands()),
                         [](const auto& chosen) { return chosen.param.name; });

} // namespace
