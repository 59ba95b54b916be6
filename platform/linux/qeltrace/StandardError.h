#ifndef PLATFORM_LINUX_QELTRACE_STANDARDERROR_H
#define PLATFORM_LINUX_QELTRACE_STANDARDERROR_H

#include <string>

namespace qeltrace
{

/**
 * Writes a line to standard error, without waiting.
 *
 * Where the program was started without standard error, it goes nowhere: what has the descriptor
 * now is something else.
 *
 * @return false when there is no room for the line
 */
bool writeToStandardError(const std::string& line);

} // namespace qeltrace

#endif
