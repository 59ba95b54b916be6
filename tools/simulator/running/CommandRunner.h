/**
 * @file
 * @brief Runs the command where nothing else tells how it ended: this program, started once more,
 *        between proot and the command.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_COMMANDRUNNER_H
#define TOOLS_SIMULATOR_RUNNING_COMMANDRUNNER_H

#include "FileDescriptor.h"

#include <filesystem>
#include <string>
#include <vector>

/** This program's file. @throws Failure */
std::filesystem::path ownProgram();

/** The arguments in front of a command that is run so, and reported to this socket. */
std::vector<std::string> argumentsToRunCommand(int socket);

/** Gives the standard streams to the other end of a socket. @throws Failure */
void sendStandardStreams(const syscalls::FileDescriptor& socket);

/** Whether these are the arguments of a program that was started so. */
bool isCommandRunner(const std::vector<std::string>& arguments);

/** Takes the standard streams, runs the command, reports, and returns the exit status. */
int runCommand(const std::vector<std::string>& arguments);

#endif
