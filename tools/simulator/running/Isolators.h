/**
 * @file
 * @brief The programs that separate a board from the host.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_ISOLATORS_H
#define TOOLS_SIMULATOR_RUNNING_ISOLATORS_H

#include "running/Run.h"
#include "running/Sandbox.h"
#include "running/Supervisor.h"

/**
 * Chooses a program and tells it what the sandbox is to be; the command is still to be added.
 *
 * @throws Failure when there is no program that is allowed to do it here
 */
Launch chooseIsolator(const Sandbox& sandbox, const Board& board, Isolation isolation,
                      const std::filesystem::path& workingDirectory);

#endif
