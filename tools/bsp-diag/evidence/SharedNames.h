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

#include <chrono>
#include <optional>

struct SharedName
{
    std::optional<SharedFile> file;
    /** Processes that have mapped the file of that name. */
    Users users;
    /** Whether it is certain that it is there, and for a moment nobody has mapped it. */
    bool isUnused = false;
    /** Processes that have mapped one which had the name before. */
    Users formerUsers;
};

struct SharedNames
{
    SharedName semaphore;
    SharedName syncArea;
};

/** @param moment  how long nobody must use a name before it is unused */
SharedNames lookAtSharedNames(const Places& places, const ProcessTable& processes, const Dtcm& dtcm,
                              std::chrono::milliseconds moment);

#endif
