/**
 * @file
 * @brief The exit statuses of commands that run on boards, as shells and env(1) have them.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_EXITSTATUS_H
#define TOOLS_SIMULATOR_RUNNING_EXITSTATUS_H

#include <sys/wait.h>

enum ExitStatus
{
    NotStarted = 125, /**< For a reason that is not the command's. */
    NotRunnable = 126,
    NotFound = 127,
    SignalBase = 128
};

/** The exit status for what waitpid told. */
inline int exitStatus(int waitStatus)
{
    return WIFSIGNALED(waitStatus) ? SignalBase + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

#endif
