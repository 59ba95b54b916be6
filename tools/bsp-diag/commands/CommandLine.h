#ifndef TOOLS_DIAG_COMMANDS_COMMANDLINE_H
#define TOOLS_DIAG_COMMANDS_COMMANDLINE_H

/** Does what main's arguments say, and returns the program's exit status. */
int runCommandLine(int argc, char* argv[]);

#endif
