#include "findings/Subjects.h"

#include <unistd.h>

namespace
{

void judgeDirectory(const DirectoryEvidence& directory, const std::string& subject,
                    Diagnosis& diagnosis)
{
    if (!directory.isThere) {
        diagnosis.add(subject + "-missing", {{"place", directory.path}});
    } else if (!directory.whyNotWritable.empty()) {
        diagnosis.add(subject + "-not-writable",
                      {{"place", directory.path}, {"error", directory.whyNotWritable}});
    } else if (directory.isFull) {
        diagnosis.add(subject + "-full", {{"place", directory.path}});
    }
}

/** Whether it is a user who logs in, by the numbers that systems give. */
bool isLoginUser(uid_t user)
{
    constexpr uid_t first = 1000;
    constexpr uid_t nobody = 65534;
    return user >= first && user != nobody;
}

void judgeOwner(const SharedFile& file, const SystemEvidence& system, Diagnosis& diagnosis)
{
    const uid_t owner = file.status().st_uid;
    if (system.removesIpc && isLoginUser(owner)) {
        diagnosis.add("remove-ipc", {{"place", file.text()}, {"where", system.removesIpcWhere}});
    }
    const bool isProtected = system.protectedRegular != 0 && system.sharedMemory.isShared &&
                             owner != system.sharedMemory.owner;
    if (isProtected && owner != ::geteuid()) {
        diagnosis.add("sticky-names",
                      {{"place", file.text()}, {"value", std::to_string(system.protectedRegular)}});
    }
}

} // namespace

void judgeSystem(const Evidence& evidence, Diagnosis& diagnosis)
{
    for (const SharedName* const name : {&evidence.names.semaphore, &evidence.names.syncArea}) {
        if (name->file) {
            judgeOwner(*name->file, evidence.system, diagnosis);
        }
    }
    judgeDirectory(evidence.system.sharedMemory, "shm", diagnosis);
    judgeDirectory(evidence.system.temporaryFiles, "tmp", diagnosis);
}
