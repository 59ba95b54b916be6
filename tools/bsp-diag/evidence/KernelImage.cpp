#include "evidence/KernelImage.h"

#include "SharedMemory.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>

namespace
{

/** The processes that hold locks on a file, by the list "N: FLOCK ADVISORY WRITE PID DEV:INODE". */
std::set<pid_t> holdersOf(const FileIdentity& file, const std::string& locks)
{
    const std::string wanted = file.device + ':' + std::to_string(file.inode);
    std::set<pid_t> holders;
    std::ifstream list(locks);
    for (std::string line; std::getline(list, line);) {
        std::istringstream words(line);
        std::string number;
        std::string type;
        std::string kind;
        std::string access;
        std::string place;
        pid_t process = 0;
        words >> number >> type;
        if (type == "->") {
            continue; // waits for it
        }
        words >> kind >> access >> process >> place;
        if (place == wanted) {
            holders.insert(process);
        }
    }
    return holders;
}

} // namespace

KernelImageEvidence lookAtKernelImage(const Places& places, const ProcessTable& processes)
{
    KernelImageEvidence evidence;
    evidence.file = SharedFile::look(places.sharedMemory + '/' + sharedname::KernelImage);
    if (!evidence.file) {
        return evidence;
    }
    evidence.ageInSeconds =
        static_cast<long>(std::time(nullptr) - evidence.file->status().st_ctim.tv_sec);
    evidence.holders = holdersOf(evidence.file->identity(), places.processes + "/locks");
    for (const pid_t holder : evidence.holders) {
        const std::optional<Process> process = processes.ofThread(holder);
        evidence.holdersText += (evidence.holdersText.empty() ? "" : ", ") +
                                (process ? process->text() : "process " + std::to_string(holder));
    }
    return evidence;
}
