#ifndef PLATFORM_LINUX_QELTRACE_LINEWRITER_H
#define PLATFORM_LINUX_QELTRACE_LINEWRITER_H

#include <string>

namespace qeltrace
{

/**
 * Writes a line with one call, so that it stays whole; a pipe without a reader ends no process.
 *
 * @return whether the line was written
 */
bool writeLine(int fd, const std::string& line);

} // namespace qeltrace

#endif
