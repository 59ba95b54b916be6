#include "evidence/SystemSettings.h"

#include "Text.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

DirectoryEvidence lookAtDirectory(const std::string& path)
{
    DirectoryEvidence evidence;
    evidence.path = path;
    struct stat status
    {};
    evidence.isThere = ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    if (!evidence.isThere) {
        return evidence;
    }
    evidence.owner = status.st_uid;
    evidence.isShared = (status.st_mode & S_ISVTX) != 0 && (status.st_mode & S_IWOTH) != 0;
    if (::access(path.c_str(), W_OK | X_OK) != 0) {
        evidence.whyNotWritable = errorText(errno);
    }
    struct statvfs space
    {};
    if (::statvfs(path.c_str(), &space) == 0) {
        // Some file systems do not count.
        const bool noRoom = space.f_blocks > 0 && space.f_bavail == 0;
        const bool noNames = space.f_files > 0 && space.f_favail == 0;
        evidence.isFull = noRoom || noNames;
    }
    return evidence;
}

/** The last RemoveIPC of a file of the login manager's settings; empty when there is none. */
std::string removeIpcIn(const fs::path& file)
{
    constexpr const char* key = "RemoveIPC=";
    std::string value;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
        if (line.rfind(key, 0) == 0) {
            value = line.substr(std::string(key).size());
        }
    }
    return value;
}

/** The files that add to the main one, by their names, of which those of stronger folders hold. */
std::map<std::string, fs::path> additions(const Places& places)
{
    std::map<std::string, fs::path> files;
    for (const std::string& folder : places.loginSettings) {
        std::error_code error;
        for (fs::directory_iterator entry(folder + "/logind.conf.d", error);
             !error && entry != fs::directory_iterator(); entry.increment(error))
        {
            if (entry->path().extension() == ".conf") {
                files.emplace(entry->path().filename(), entry->path());
            }
        }
    }
    return files;
}

void lookAtLogins(const Places& places, const ProcessTable& processes, SystemEvidence& evidence)
{
    constexpr const char* manager = "systemd-logind";
    const bool isThere =
        std::any_of(processes.all().begin(), processes.all().end(),
                    [&](const Process& process) { return process.name == manager; });
    evidence.removesIpc = isThere;
    evidence.removesIpcWhere = "the default of systemd-logind";
    const auto apply = [&](const fs::path& file) {
        const std::string value = removeIpcIn(file);
        if (!value.empty()) {
            const bool isOff = value == "no" || value == "false" || value == "off" || value == "0";
            evidence.removesIpc = isThere && !isOff;
            evidence.removesIpcWhere = file.string();
        }
    };
    apply(places.loginSettings[0] + "/logind.conf");
    for (const auto& [name, file] : additions(places)) {
        apply(file);
    }
}

} // namespace

SystemEvidence lookAtSystem(const Places& places, const ProcessTable& processes)
{
    SystemEvidence evidence;
    evidence.sharedMemory = lookAtDirectory(places.sharedMemory);
    evidence.temporaryFiles = lookAtDirectory(places.temporaryFiles);
    std::ifstream(places.processes + "/sys/fs/protected_regular") >> evidence.protectedRegular;
    lookAtLogins(places, processes, evidence);
    return evidence;
}
