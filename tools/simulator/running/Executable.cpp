#include "running/Executable.h"

#include <cerrno>
#include <cstdlib>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

namespace executable
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* DefaultPath = "/usr/local/bin:/usr/bin:/bin";

} // namespace

std::vector<fs::path> candidates(const std::string& command)
{
    if (command.find('/') != std::string::npos) {
        return {fs::absolute(command)};
    }
    std::vector<fs::path> files;
    if (command.empty()) {
        return files;
    }
    const char* const path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): one thread
    std::istringstream directories(path == nullptr ? DefaultPath : path);
    for (std::string directory; std::getline(directories, directory, ':');) {
        files.push_back(fs::absolute(directory.empty() ? "." : directory) / command);
    }
    return files;
}

int worse(int error, int other)
{
    return other == ENOENT || other == ENOTDIR ? error : other;
}

std::optional<fs::path> find(const std::string& command, int& error)
{
    error = ENOENT;
    for (const fs::path& candidate : candidates(command)) {
        const int reason = whyNot(candidate);
        if (reason == 0) {
            return candidate;
        }
        error = worse(error, reason);
    }
    return std::nullopt;
}

int whyNot(const fs::path& file)
{
    struct stat status
    {};
    if (::stat(file.c_str(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return ::access(file.c_str(), X_OK) == 0 ? 0 : errno;
}

} // namespace executable
