/**
 * @file
 * @brief Every call that a function of the interface makes fails once in each plausible way.
 *
 * A dry run learns which calls a function makes, of the C library, zlib and the platform; the cases
 * follow from that. What has to happen is in the tables of failures; where they have no row,
 * nothing may be noticed.
 */
#include "FailureRows.h"
#include "FaultCases.h"
#include "FaultyProcess.h"
#include "Namespaces.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

namespace
{

using interface::Case;
using interface::FailureRow;
using interface::Outcome;
using interposed::Fault;
using Lines = std::vector<std::string>;

/** The messages of levels 1 to 4, without the numbers of descriptors. */
Lines notable(const Lines& messages)
{
    Lines result;
    for (std::string message : messages) {
        const std::size_t space = message.find(' ');
        if (space != std::string::npos && message[space + 1] <= '4') {
            const std::size_t number = message.find("Led_close(");
            if (number != std::string::npos) {
                const std::size_t begin = message.find('(', number) + 1;
                message.replace(begin, message.find(')', number) - begin, "@f");
            }
            result.push_back(message);
        }
    }
    return result;
}

/** Whether the fault keeps a name from being taken away. */
bool keepsName(const std::string& call)
{
    return call == "unlink" || call == "lstat" || call == "sem_unlink" || call == "shm_unlink";
}

class InterfaceFaults : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override
    {
        if (interface::isTraced()) {
            GTEST_SKIP() << testsupport::NoNamespaces << interface::NeedsNoTracer;
        }
    }

    void expectRow(const Outcome& normal, const Outcome& faulty, const FailureRow& row, int value)
    {
        ++m_hits[&row];
        EXPECT_EQ(faulty.status, row.status.value_or(normal.status)) << faulty.err;
        Lines messages;
        for (const std::string& message : row.messages) {
            messages.push_back(interface::filledIn(message, value));
        }
        if (!row.answer) {
            const Lines others = notable(normal.messages);
            messages.insert(messages.end(), others.begin(), others.end());
        }
        EXPECT_EQ(notable(faulty.messages), messages);
        EXPECT_THAT(faulty.err, testing::HasSubstr(row.err));
        const std::string answer =
            row.answer ? interface::filledIn(*row.answer, value) : normal.answer;
        EXPECT_EQ(faulty.answer, answer);
        const std::string& next = row.next ? *row.next : normal.next;
        EXPECT_EQ(faulty.next, next == "same" ? answer : next);
        if (row.error) {
            EXPECT_EQ(faulty.error, *row.error == interface::TheFaults ? value : *row.error);
        }
    }

    void expectNothingNoticed(const Outcome& normal, const Outcome& faulty)
    {
        EXPECT_EQ(faulty.status, normal.status) << faulty.err;
        EXPECT_EQ(notable(faulty.messages), notable(normal.messages));
        EXPECT_EQ(faulty.answer, normal.answer);
        EXPECT_EQ(faulty.next, normal.next);
    }

    /** How much of the heap may be kept: a private area, and what the C library needs to unwind. */
    static std::size_t mayKeep(const Outcome& faulty)
    {
        const bool isThrown = faulty.answer.rfind("exception", 0) == 0;
        return std::string(GetParam()) == "warm" ? 2 : isThrown ? 1 : 0;
    }

    void expectNothingLeft(const Outcome& normal, const Outcome& faulty, const FailureRow* row,
                           const std::string& call)
    {
        if (row != nullptr && !row->left.empty()) {
            EXPECT_EQ(faulty.left, row->left);
        } else if (faulty.status == normal.status && !keepsName(call)) {
            EXPECT_EQ(faulty.left, normal.left);
        }
        if (faulty.status == normal.status) {
            EXPECT_LE(interposed::heapLeft(faulty.record),
                      interposed::heapLeft(normal.record) + mayKeep(faulty));
            EXPECT_LE(faulty.openFiles, normal.openFiles);
            EXPECT_LE(faulty.record.mappings, normal.record.mappings);
        }
    }

    void tryAllFaults(const Case& what)
    {
        ++m_cases;
        const Outcome normal = interface::perform(what, std::nullopt);
        // Only the store keeps something for the life of the process.
        if (std::string(GetParam()) != "warm" && normal.status == 0) {
            EXPECT_EQ(interposed::heapLeft(normal.record), 0U) << what.name;
            EXPECT_EQ(normal.record.mappings, 0) << what.name;
            EXPECT_EQ(normal.openFiles, 0) << what.name;
        }
        for (const FailureRow& row : m_rows) {
            if (row.call.empty() && interface::isOf(row, what.name)) {
                SCOPED_TRACE(what.name);
                expectRow(normal, normal, row, 0);
            }
        }
        for (const Fault& fault : interposed::plausibleFaults(normal.record)) {
            const std::string call = interposed::nameOf(normal.record, fault.call);
            if (what.only != nullptr && call != what.only) {
                continue;
            }
            SCOPED_TRACE(what.name + ", " + interposed::describe(normal.record, fault));
            ++m_faults;
            const Outcome faulty = interface::perform(what, fault);
            ASSERT_GT(faulty.record.size, fault.call);
            ASSERT_EQ(faulty.record.functions[fault.call], normal.record.functions[fault.call]);
            const FailureRow* row = interface::rowOf(m_rows, what.name, normal.record, fault);
            if (row != nullptr) {
                expectRow(normal, faulty, *row, fault.value);
            } else {
                expectNothingNoticed(normal, faulty);
            }
            expectNothingLeft(normal, faulty, row, call);
        }
    }

    const std::vector<FailureRow>& m_rows = interface::failureRows(GetParam());
    std::map<const FailureRow*, int> m_hits;
    int m_cases = 0;
    int m_faults = 0;
};

TEST_P(InterfaceFaults, AreAnsweredAsTheTablesOfFailuresSay)
{
    for (const Case& what : interface::faultCases()) {
        if (interface::moduleOf(what) == GetParam()) {
            tryAllFaults(what);
        }
    }
    std::cout << GetParam() << ": " << m_cases << " cases, " << m_faults
              << " faults injected; rows of the tables of failures, and how often they were hit:\n";
    for (const FailureRow& row : m_rows) {
        EXPECT_GT(m_hits[&row], 0) << "never hit: " << interface::nameOf(row);
        std::cout << "  " << m_hits[&row] << "  " << interface::nameOf(row) << '\n';
    }
}

INSTANTIATE_TEST_SUITE_P(Modules, InterfaceFaults,
                         testing::Values("identity", "firmware", "rstate", "led", "warm"),
                         [](const auto& chosen) { return std::string(chosen.param); });

TEST(InterfaceOperations, AreAllThatTheLibraryExports)
{
    std::ifstream list(BSP_TEST_EXPORTED_SYMBOLS);
    std::set<std::string> functions;
    for (std::string name; std::getline(list, name);) {
        const bool isData = name == "Bsp_boardIdMap" || name.rfind("RState::Max", 0) == 0 ||
                            (name.size() > 5 && name.substr(name.size() - 5) == "Names");
        if (!isData) {
            functions.insert(name);
        }
    }
    std::set<std::string> operations;
    for (const interface::Operation& operation : interface::operations()) {
        operations.insert(operation.name);
    }
    EXPECT_GT(functions.size(), 80U);
    EXPECT_EQ(operations, functions);
}

} // namespace
