#ifndef TESTS_FAULTS_FAILURETABLES_H
#define TESTS_FAULTS_FAILURETABLES_H

#include <set>
#include <string>

namespace faults
{

/** A message as it stands in a table of failures: its beginning. */
using FailureRow = std::string;

/** The messages of a command that failing system calls cause; each of them has to be seen. */
std::set<FailureRow> failuresOf(const std::string& command);

/**
 * The row that a message of the command is; empty when it is none. Where a row ends with the text
 * of an error, that has to be the given one.
 */
FailureRow rowOf(const std::string& command, const std::string& message, int error);

/** Whether a message is one that every command may write another way when something fails. */
bool canVary(const std::string& message);

} // namespace faults

#endif
