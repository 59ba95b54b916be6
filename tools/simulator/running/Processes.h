#ifndef TOOLS_BOARD_PROCESSES_H
#define TOOLS_BOARD_PROCESSES_H

#include <vector>

#include <sys/types.h>

namespace processes
{

/** This process's children, also those that ended and have not been waited for. */
std::vector<pid_t> children();

} // namespace processes

#endif
