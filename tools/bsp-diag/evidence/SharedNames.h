/**
 * @file
 * @brief The names that the users of the warm area share, and who uses them.
 */
#ifndef TOOLS_DIAG_EVIDENCE_SHAREDNAMES_H
#define TOOLS_DIAG_EVIDENCE_SHAREDNAMES_H

#include "evidence/Devices.h"
#include "evidence/Places.h"
#include "evidence/ProcessTable.h"
#include "evidence/SharedFile.h"

#include <optional>

struct SharedName
{
    std::optional<SharedFile> file;
    /** Processes that have mapped the file of that name. */
    Users users;
    /** Processes that have mapped one which had the name before. */
    Users formerUsers;
};

struct SharedNames
{
    SharedName semaphore;
    SharedName syncArea;
};

SharedNames lookAtSharedNames(const Places& places, const ProcessTable& processes,
                              const Dtcm& dtcm);

#endif
