/**
 * @file
 * @brief The sub-commands. Each adds itself to the program and, when chosen, runs while the command
 *        line is parsed. They throw Failure and UsageError.
 */
#ifndef TOOLS_SIMULATOR_COMMANDS_COMMANDS_H
#define TOOLS_SIMULATOR_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

void addVariantsCommand(CLI::App& app);
void addCreateCommand(CLI::App& app);
void addRestartCommand(CLI::App& app);
void addShowCommand(CLI::App& app);

/** Adds `set`; the program's exit status becomes that of the program that sets it on the board. */
void addSetCommand(CLI::App& app, int& status);

/**
 * Adds `run`; the program's exit status becomes that of the command which is run.
 *
 * @param commandLine  the command and its arguments; see takeCommand
 */
void addRunCommand(CLI::App& app, const std::vector<std::string>& commandLine, int& status);

/**
 * Takes the command to run out of the arguments of `run`, and leaves one word in its
 * place. Its arguments are its own, whatever they look like; nothing here may interpret them.
 */
std::vector<std::string> takeCommand(std::vector<std::string>& arguments);

#endif
