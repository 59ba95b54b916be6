/**
 * @file
 * @brief The sub-commands. Each adds itself to the program and, when chosen, runs while the command
 *        line is parsed; the program's exit status becomes its own.
 */
#ifndef TOOLS_DIAG_COMMANDS_COMMANDS_H
#define TOOLS_DIAG_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include <stdexcept>

enum Status
{
    Done = 0,
    Found = 1, /**< Something was found, or could not be done. */
    WrongUsage = 2,
    CannotLook = 3
};

/** The words of the command line make no sense. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void addInfoCommand(CLI::App& app, int& status);
void addCheckCommand(CLI::App& app, int& status);
void addRepairCommand(CLI::App& app, int& status);
void addCaptureCommand(CLI::App& app, int& status);

#endif
