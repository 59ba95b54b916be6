/**
 * @file
 * @brief A process that calls a function of the interface, one of whose calls fails.
 */
#ifndef TESTS_INTERFACE_FAULTYPROCESS_H
#define TESTS_INTERFACE_FAULTYPROCESS_H

#include "InterposedCalls.h"
#include "Operations.h"
#include "RecordingTrace.h"

#include <optional>
#include <string>
#include <vector>

namespace interface
{

/** A function in some circumstances. */
struct Case
{
    std::string name;
    void (*perform)(Answer&);
    void (*prepare)() = nullptr;              /**< Changes the board, if need be. */
    std::vector<interposed::Broken> broken{}; /**< What fails whatever else does. */
    bool isEnd = false;                       /**< What the process calls at its end is meant. */
    const char* only = nullptr;               /**< The only function that fails, if not all do. */
    bool isRepeated = false;                  /**< Another call, not looked at, comes first. */
};

/** What a process did that performed a case, and then once more without the fault. */
struct Outcome
{
    interposed::Record record; /**< Of the first time. */
    std::string answer;
    std::string next; /**< The second answer. */
    int error;        /**< errno after the first. */
    long openFiles;   /**< More than before. */
    int status;       /**< As testsupport::endOf says. */
    std::string err;
    std::vector<std::string> messages; /**< Of the first time, as "CHANNEL LEVEL TEXT". */
    std::vector<std::string> left;     /**< Names, after its end. */
};

/** Whether the board is shown by a tracer, where there are no namespaces. */
bool isTraced();
constexpr const char* NeedsNoTracer = "under a tracer a process that waits looks like any other";

/** Keeps a message for the outcome. */
void keepMessage(const recordingtrace::Message& message);

/** Performs a case on a new board. */
Outcome perform(const Case& what, const std::optional<interposed::Fault>& fault);

} // namespace interface

#endif
