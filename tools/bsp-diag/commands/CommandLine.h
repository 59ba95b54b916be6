#ifndef TOOLS_DIAG_COMMANDS_COMMANDLINE_H
#define TOOLS_DIAG_COMMANDS_COMMANDLINE_H

#include <string>
#include <vector>

/** Does what the arguments say, and returns the program's exit status. */
int runCommandLine(std::vector<std::string> arguments);

#endif
