/**
 * @file
 * @brief What has to happen when a call fails: the tables of failures as data.
 */
#ifndef TESTS_INTERFACE_FAILUREROWS_H
#define TESTS_INTERFACE_FAILUREROWS_H

#include "InterposedCalls.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace interface
{

/** As errno of a row: the value of the fault. */
constexpr int TheFaults = -1;

/** A row of a table of failures. What it does not say is as without the fault. */
struct FailureRow
{
    std::vector<std::string> cases; /**< Beginnings of the names of those that it is about. */
    std::string call;      /**< Function that fails; empty: the case itself is the cause. */
    std::size_t first = 1; /**< Of the calls of that function, counted from 1. */
    std::size_t last = 1;
    std::vector<int> values{}; /**< What it fails with; empty: with any. */
    std::optional<interposed::Fault::Kind> kind{};
    std::vector<std::string> messages{}; /**< Of the levels 1 to 4; for marks see filledIn. */
    std::optional<std::string> answer{};
    std::optional<std::string> next{}; /**< Of the second call; "same" for the first one's. */
    std::optional<int> status{};
    std::string err{};               /**< A part of what is on standard error. */
    std::vector<std::string> left{}; /**< Names that stay, too. */
    std::optional<int> error{};      /**< errno after it. */
};

/** Those of a module. */
const std::vector<FailureRow>& failureRows(const std::string& module);

/** What a row is called. */
std::string nameOf(const FailureRow& row);

/** Whether the row is about that case. */
bool isOf(const FailureRow& row, const std::string& caseName);

/** The row for a fault of that call, if there is one. */
const FailureRow* rowOf(const std::vector<FailureRow>& rows, const std::string& caseName,
                        const interposed::Record& record, const interposed::Fault& fault);

/** A text of a row after a fault with that value: @e is the error's text, @n the value, @x what was
 * thrown. */
std::string filledIn(std::string text, int value);

} // namespace interface

#endif
