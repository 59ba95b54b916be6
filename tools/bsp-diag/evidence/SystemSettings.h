/**
 * @file
 * @brief Settings of the system on which shared names depend.
 */
#ifndef TOOLS_DIAG_EVIDENCE_SYSTEMSETTINGS_H
#define TOOLS_DIAG_EVIDENCE_SYSTEMSETTINGS_H

#include "evidence/Places.h"
#include "evidence/ProcessTable.h"

#include <string>
#include <vector>

#include <sys/types.h>

/** A directory that programs put names into. */
struct DirectoryEvidence
{
    std::string path;
    bool isThere = false;
    bool isFull = false;
    std::string whyNotWritable; /**< Empty when it is. */
    bool isShared = false;      /**< Everyone may write, and remove only what is his. */
    uid_t owner = 0;
};

struct SystemEvidence
{
    DirectoryEvidence sharedMemory;
    DirectoryEvidence temporaryFiles;
    /** Whether the login manager runs, and by its settings removes what is left at a logout. */
    bool removesIpc = false;
    std::string removesIpcWhere;
    /** Value of fs.protected_regular; 0 where the kernel has none. */
    int protectedRegular = 0;
};

SystemEvidence lookAtSystem(const Places& places, const ProcessTable& processes);

#endif
