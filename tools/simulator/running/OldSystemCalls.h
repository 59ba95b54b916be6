#ifndef TOOLS_SIMULATOR_RUNNING_OLDSYSTEMCALLS_H
#define TOOLS_SIMULATOR_RUNNING_OLDSYSTEMCALLS_H

/**
 * Hides the system calls from this process and all that it starts which proot does not know: it
 * would let them through with the host's paths. Programs find an older kernel and use older calls.
 *
 * @return 0 or the error
 */
int allowOldSystemCallsOnly();

#endif
