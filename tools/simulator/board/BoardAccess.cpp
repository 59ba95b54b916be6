#include "board/BoardAccess.h"

#include "board/Board.h"
#include "report/Failure.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <sys/file.h>

namespace
{

namespace fs = std::filesystem;

constexpr std::chrono::seconds LongestWait(10);
constexpr std::chrono::milliseconds BetweenAttempts(10);

Failure noBoard(const fs::path& path, int error)
{
    return {"no board '" + path.string() + "'", error};
}

} // namespace

Directory openBoard(const fs::path& board, OtherUsers others)
{
    requireUnchangeable(board, others);
    // A slash at the end would follow a link.
    const fs::path place = board.has_filename() ? board : board.parent_path();
    std::optional<Directory> directory = Directory::open(place);
    if (directory) {
        return std::move(*directory);
    }
    const int error = errno;
    std::error_code ignored;
    if (fs::is_symlink(place, ignored)) {
        throw Failure("no board '" + place.string() + "': it is a symbolic link");
    }
    throw noBoard(place, error);
}

void requireBoard(const Directory& directory)
{
    const std::initializer_list<const char*> marks{entry::Eeprom, entry::Dtcm, entry::Registers,
                                                   entry::Settings};
    if (std::none_of(marks.begin(), marks.end(),
                     [&](const char* mark) { return directory.status(mark).has_value(); }))
    {
        throw Failure("no board '" + directory.name().string() +
                      "': there is nothing of a board in it");
    }
}

void hold(const Directory& board, Use use)
{
    const auto limit = std::chrono::steady_clock::now() + LongestWait;
    while (::flock(board.fd(), (use == Use::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            throw Failure("cannot lock '" + board.name().string() + "'", errno);
        }
        if (std::chrono::steady_clock::now() >= limit) {
            throw Failure("'" + board.name().string() +
                          "' has been in use by another bsp-board for " +
                          std::to_string(LongestWait.count()) + " seconds");
        }
        std::this_thread::sleep_for(BetweenAttempts);
    }
}
