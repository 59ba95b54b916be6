#ifndef TOOLS_BSP_COMMAND_H
#define TOOLS_BSP_COMMAND_H

#include <cstdint>
#include <vector>

/** One function of a group, as it is typed and listed. */
struct Command
{
    /** Runs the function with the arguments after its name; the result is the exit status. */
    std::int32_t (*handler)(std::int32_t argc, char* argv[]);
    const char* name;
    const char* description;
};

/** The functions that the program offers under one invocation name. */
struct CommandGroup
{
    const char* name;
    const std::vector<Command>* commands;
};

/** The functions of each group, in listing order; each table stands beside its handlers. */
extern const std::vector<Command> bspCommands;
extern const std::vector<Command> ledCommands;
extern const std::vector<Command> rstateCommands;

/** All groups. */
extern const std::vector<CommandGroup> commandGroups;

#endif
