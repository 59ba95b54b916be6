#include "board/Board.h"
#include "board/BoardAccess.h"
#include "report/Failure.h"

#include <cerrno>
#include <climits>
#include <deque>

#include <fcntl.h>

namespace
{

namespace fs = std::filesystem;

constexpr int MostLinks = 40; // as the kernel's

enum class Sharing
{
    Allowed, /**< Everyone may add entries and change one's own, as in /tmp. */
    Forbidden
};

bool othersMayWrite(const struct stat& status, Sharing sharing)
{
    const bool shared = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
    return !S_ISLNK(status.st_mode) && (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 &&
           !(shared && sharing == Sharing::Allowed);
}

void require(const struct stat& status, Sharing sharing, const fs::path& name)
{
    if (othersOwn(status) || othersMayWrite(status, sharing)) {
        throw Failure("other users can change '" + name.string() +
                      "'; root works on such a board only with " + TrustOption);
    }
}

struct stat statusOf(const Directory& directory)
{
    struct stat status
    {};
    if (::fstat(directory.fd(), &status) != 0) {
        throw Failure("cannot read '" + directory.name().string() + "'", errno);
    }
    return status;
}

/** Goes to a directory step by step, and requires of each step that others cannot lead elsewhere.
 */
class Walk
{
public:
    explicit Walk(const fs::path& path)
        : m_path(path), m_current(start(path.is_absolute() ? "/" : ".")),
          m_steps(path.begin(), path.end())
    {}

    Directory toItsEnd()
    {
        if (m_path.empty()) {
            throw failure(ENOENT);
        }
        while (!m_steps.empty()) {
            const std::string step = m_steps.front().string();
            m_steps.pop_front();
            if (!step.empty() && step != "." && step != "/") {
                take(step);
            }
        }
        return std::move(m_current);
    }

private:
    Failure failure(int error) const { return {"no board '" + m_path.string() + "'", error}; }

    Directory start(const char* place) const
    {
        std::optional<Directory> directory = Directory::open(place);
        if (!directory) {
            throw failure(errno);
        }
        require(statusOf(*directory), Sharing::Allowed, directory->name());
        return std::move(*directory);
    }

    /** An emulator that shows programs a root of its own knows its entries by whole paths only. */
    std::string pathTo(const std::string& step) const
    {
        return m_current.name() == "/" ? '/' + step : step;
    }

    void take(const std::string& step)
    {
        // The start "." is left out of what messages show.
        const fs::path name = m_current.name() == "." ? fs::path(step) : m_current.nameOf(step);
        const std::string entry = pathTo(step);
        syscalls::FileDescriptor next = m_current.openEntry(entry, O_RDONLY | O_DIRECTORY);
        if (next.isOpen()) {
            m_current = Directory(std::move(next), name);
            require(statusOf(m_current), Sharing::Allowed, name);
            return;
        }
        const int error = errno;
        const std::optional<struct stat> status = m_current.status(entry);
        if (!status || !S_ISLNK(status->st_mode)) {
            throw failure(error);
        }
        require(*status, Sharing::Allowed, name);
        follow(entry);
    }

    void follow(const std::string& link)
    {
        std::string target(PATH_MAX, '\0');
        const ssize_t size =
            ::readlinkat(m_current.fd(), link.c_str(), target.data(), target.size());
        if (size < 0 || ++m_links > MostLinks) {
            throw failure(size < 0 ? errno : ELOOP);
        }
        const fs::path path(target.substr(0, static_cast<std::size_t>(size)));
        if (path.is_absolute()) {
            m_current = start("/");
        }
        m_steps.insert(m_steps.begin(), path.begin(), path.end());
    }

    fs::path m_path;
    int m_links = 0;
    Directory m_current;
    std::deque<fs::path> m_steps;
};

std::optional<Directory> findDirectory(const Directory& directory, const std::string& name)
{
    const std::optional<struct stat> status = directory.status(name);
    return status && S_ISDIR(status->st_mode) ? directory.find(name) : std::nullopt;
}

void requireEntry(const Directory& directory, const std::string& name, Sharing sharing)
{
    if (const std::optional<struct stat> status = directory.status(name)) {
        require(*status, sharing, directory.nameOf(name));
    }
}

void requireAllBelow(const Directory& directory)
{
    for (const std::string& name : namesIn(directory)) {
        requireEntry(directory, name, Sharing::Forbidden);
        if (const std::optional<Directory> child = findDirectory(directory, name)) {
            requireAllBelow(*child);
        }
    }
}

/** Programs on a board go into its LEDs, and into its shared directories as into the host's. */
void requireContents(const Directory& board)
{
    for (const std::string& name : namesIn(board)) {
        const bool shared = name == entry::SharedMemory || name == entry::TemporaryFiles;
        requireEntry(board, name, shared ? Sharing::Allowed : Sharing::Forbidden);
    }
    if (const std::optional<Directory> leds = findDirectory(board, entry::Leds)) {
        requireAllBelow(*leds);
    }
}

} // namespace

bool othersOwn(const struct stat& status)
{
    return status.st_uid != 0 && status.st_uid != ::geteuid();
}

bool othersCanReplaceEntries(const struct stat& directory)
{
    return othersOwn(directory) || othersMayWrite(directory, Sharing::Allowed);
}

void requireUnchangeable(const fs::path& board, OtherUsers others)
{
    if (others == OtherUsers::Trusted || ::geteuid() != 0) {
        return;
    }
    const Directory directory = Walk(board).toItsEnd();
    require(statusOf(directory), Sharing::Forbidden, directory.name());
    requireContents(directory);
}
