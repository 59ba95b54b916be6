/**
 * @file
 * @brief How the tables of failures are written down, and the modules' tables.
 */
#ifndef TESTS_INTERFACE_ROWBUILDERS_H
#define TESTS_INTERFACE_ROWBUILDERS_H

#include "FailureRows.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace interface
{

using interposed::Fault;

/** As the last call of a row: all from the first on. */
constexpr std::size_t Any = 1000;

/** A row about a call. */
inline FailureRow onCall(std::vector<std::string> cases, const char* call, std::size_t first,
                         std::size_t last, std::vector<std::string> messages,
                         std::optional<Fault::Kind> kind = std::nullopt)
{
    FailureRow row{};
    row.cases = std::move(cases);
    row.call = call;
    row.first = first;
    row.last = last;
    row.messages = std::move(messages);
    row.kind = kind;
    return row;
}

/** A row about a case whose circumstances are the cause. */
inline FailureRow onCase(const char* name, const std::string& answer,
                         std::vector<std::string> messages)
{
    FailureRow row = onCall({name}, "", 0, 0, std::move(messages));
    row.answer = answer;
    return row;
}

inline FailureRow withAnswer(FailureRow row, const std::string& answer)
{
    row.answer = answer;
    return row;
}

inline FailureRow withValues(FailureRow row, std::vector<int> values)
{
    row.values = std::move(values);
    return row;
}

/** The answer is kept for the life of the process. */
inline FailureRow forGood(FailureRow row)
{
    row.next = "same";
    return row;
}

inline FailureRow withErrno(FailureRow row)
{
    row.error = TheFaults;
    return row;
}

inline FailureRow withLeft(FailureRow row, std::vector<std::string> left)
{
    row.left = std::move(left);
    return row;
}

inline FailureRow withEnd(FailureRow row, int status, const std::string& err = "")
{
    row.status = status;
    row.err = err;
    row.answer = "";
    row.next = "";
    return row;
}

/** Functions in C and in C++ with what they answer. */
struct Answers
{
    const char* name; /**< Without its prefix. */
    std::string answer;
};

/** Rows for both forms of each function. */
inline std::vector<FailureRow> forBoth(const std::vector<Answers>& functions, const FailureRow& row)
{
    std::vector<FailureRow> rows;
    for (const Answers& function : functions) {
        const std::string name = function.name;
        rows.push_back(withAnswer(row, function.answer));
        rows.back().cases = {"Bsp_" + name, "os::bsp::" + name};
    }
    return rows;
}

inline void append(std::vector<FailureRow>& rows, const std::vector<FailureRow>& others)
{
    rows.insert(rows.end(), others.begin(), others.end());
}

std::vector<FailureRow> identityRows();
std::vector<FailureRow> firmwareRows();
std::vector<FailureRow> rstateRows();
std::vector<FailureRow> ledRows();
std::vector<FailureRow> warmRows();

} // namespace interface

#endif
