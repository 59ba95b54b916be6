#ifndef TOOLS_SIMULATOR_RUNNING_KEEPER_H
#define TOOLS_SIMULATOR_RUNNING_KEEPER_H

#include "FileDescriptor.h"
#include "running/Signals.h"
#include "running/Supervisor.h"

/**
 * Starts a command and waits for its end; for a process of its own.
 *
 * @param orders   where signals for the command come from, a byte each; at its end everything that
 *                 was started is killed
 * @return the exit status
 */
int keep(const Launch& launch, syscalls::FileDescriptor orders, const Signals& signals);

#endif
