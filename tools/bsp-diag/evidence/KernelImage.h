#ifndef TOOLS_DIAG_EVIDENCE_KERNELIMAGE_H
#define TOOLS_DIAG_EVIDENCE_KERNELIMAGE_H

#include "evidence/ProcessTable.h"
#include "evidence/SharedFile.h"

#include <optional>
#include <set>
#include <string>

#include <sys/types.h>

/** The temporary file of the kernel query. */
struct KernelImageEvidence
{
    std::optional<SharedFile> file;
    /** Who has locked it: processes of the list of locks, some of them perhaps gone. */
    std::set<pid_t> holders;
    std::string holdersText;
    /** How long ago it was changed. */
    long ageInSeconds = 0;
};

KernelImageEvidence lookAtKernelImage(const Places& places, const ProcessTable& processes);

#endif
