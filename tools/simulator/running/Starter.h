/**
 * @file
 * @brief Starts what runs a command, and what tells of the command.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_STARTER_H
#define TOOLS_SIMULATOR_RUNNING_STARTER_H

#include "FileDescriptor.h"
#include "running/Signals.h"
#include "running/Supervisor.h"

#include <string>

/** A process that runs a command, or becomes it. */
struct Started
{
    pid_t process = -1;
    /** Where it writes "child-pid" and "exit-code" of the command; none when it becomes that. */
    syscalls::FileDescriptor reports;
    /** What it complains of, where that is kept from standard error. */
    syscalls::FileDescriptor complaints;
};

/** @throws Failure */
Started start(const Launch& launch, const Signals& signals);

/** Turns this process into a program; the error when that fails. */
int become(const std::filesystem::path& program, const std::vector<std::string>& arguments);

/** Waits for a child's end: its exit status, or 128 + N after signal N. */
int waitForEnd(pid_t process);

/** Reads nothing and writes nothing but complaints from here on, and those into this file. */
void leaveStandardStreams(const syscalls::FileDescriptor& complaints);

/** A file without a name, to be written by another process. @throws Failure */
syscalls::FileDescriptor makeScratchFile();

/** The first line of such a file. */
std::string firstLine(const syscalls::FileDescriptor& scratch);

#endif
