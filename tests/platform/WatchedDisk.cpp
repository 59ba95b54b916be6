#include "WatchedDisk.h"

#include "SystemCalls.h"

#include <cerrno>
#include <utility>

#include <sys/stat.h>

namespace testsupport
{

namespace
{

using namespace systemcalls;

ino_t inodeOf(const std::string& path)
{
    struct stat status = {};
    ::stat(path.c_str(), &status);
    return status.st_ino;
}

std::string pathOf(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

bool isDirectory(int fd)
{
    return std::filesystem::is_directory(pathOf(fd));
}

} // namespace

WatchedDisk& WatchedDisk::instance()
{
    static WatchedDisk disk;
    return disk;
}

void WatchedDisk::watch(const Board& board, std::function<void()> atEachStep)
{
    m_path = board.file("settings");
    m_atEachStep = std::move(atEachStep);
    m_nameIsSafe = true;
    m_safe.clear();
    if (board.has("settings")) {
        m_safe[inodeOf(m_path)] = readFile(m_path);
    }
    m_named = safeContents();
    hooks().write = [this](int fd, const void* data, std::size_t size) -> ssize_t {
        if (!permits("write")) {
            return -1;
        }
        const ssize_t result = real().write(fd, data, size);
        wrote(fd);
        return result;
    };
    hooks().fsync = [this](int fd) {
        if (!permits(isDirectory(fd) ? "sync directory" : "sync")) {
            return -1;
        }
        const int result = real().fsync(fd);
        synchronised(fd);
        return result;
    };
    hooks().renameat = [this](int fromDirectory, const char* from, int toDirectory,
                              const char* to) {
        if (!permits("rename")) {
            return -1;
        }
        const int result = real().renameat(fromDirectory, from, toDirectory, to);
        m_nameIsSafe = false;
        takeImages("rename");
        return result;
    };
}

std::vector<Image> WatchedDisk::stop()
{
    hooks().write = nullptr;
    hooks().fsync = nullptr;
    hooks().renameat = nullptr;
    return std::exchange(m_images, {});
}

void WatchedDisk::fail(const std::string& step, int error)
{
    m_failingStep = step;
    m_failure = error;
}

bool WatchedDisk::permits(const std::string& step) const
{
    if (step != m_failingStep) {
        return true;
    }
    errno = m_failure;
    return false;
}

void WatchedDisk::wrote(int fd)
{
    if (std::filesystem::is_regular_file(pathOf(fd))) {
        const std::string contents = readFile(pathOf(fd));
        m_safe[inodeOf(pathOf(fd))] = contents.substr(0, contents.size() / 2);
        takeImages("write");
    }
}

void WatchedDisk::synchronised(int fd)
{
    if (isDirectory(fd)) {
        m_nameIsSafe = true;
        m_named = safeContents();
        takeImages("sync directory");
    } else {
        m_safe[inodeOf(pathOf(fd))] = readFile(pathOf(fd));
        takeImages("sync");
    }
}

/** What a power cut leaves of the file that has the store's name now. */
std::optional<std::string> WatchedDisk::safeContents() const
{
    if (!std::filesystem::exists(m_path)) {
        return std::nullopt;
    }
    return m_safe.at(inodeOf(m_path));
}

/** What is left when only the process ends now, and what when the power goes. */
void WatchedDisk::takeImages(const std::string& step)
{
    const bool exists = std::filesystem::exists(m_path);
    m_images.push_back(
        {step + ", process ends", exists ? std::optional(readFile(m_path)) : std::nullopt});
    m_images.push_back({step + ", power goes", safeContents()});
    if (!m_nameIsSafe) {
        m_images.push_back({step + ", name is lost", m_named});
    }
    m_atEachStep();
}

} // namespace testsupport
