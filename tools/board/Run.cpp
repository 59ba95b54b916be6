#include "Run.h"

#include "Executable.h"
#include "Failure.h"
#include "Sandbox.h"
#include "Supervisor.h"

#include <cstdlib>
#include <iostream>

namespace
{

namespace fs = std::filesystem;

enum Status
{
    NotRunnable = 126,
    NotFound = 127
};

fs::path findBubblewrap()
{
    for (const fs::path& file : executable::candidates("bwrap")) {
        if (executable::whyNot(file) == 0) {
            return file;
        }
    }
    throw Failure("cannot find bwrap, which runs commands on a board: install bubblewrap "
                  "(on Debian: apt-get install bubblewrap)");
}

void keepVisible(Sandbox& sandbox, const fs::path& path)
{
    sandbox.keepVisible(path);
    sandbox.keepVisible(fs::weakly_canonical(path));
}

/** Lets the sandbox show the command's file; the error when there is none that can be run. */
int findCommand(Sandbox& sandbox, const std::string& command)
{
    int error = ENOENT;
    for (const fs::path& candidate : executable::candidates(command)) {
        // A board's own file comes before the host's of the same path.
        const int onBoard = executable::whyNot(sandbox.onHost(candidate));
        const int onHost = onBoard == 0 ? 0 : executable::whyNot(candidate);
        if (onHost == 0) {
            if (onBoard != 0 || !Sandbox::isHidden(candidate)) {
                keepVisible(sandbox, candidate);
            }
            return 0;
        }
        error = onHost == ENOENT || onHost == ENOTDIR ? error : onHost;
    }
    return error;
}

int reportUnusable(const std::string& command, int error)
{
    const bool missing = error == ENOENT;
    std::cerr << "bsp-board: "
              << (missing ? "cannot run '" + command + "': not found"
                          : Failure("cannot run '" + command + "'", error).what())
              << '\n';
    return missing ? NotFound : NotRunnable;
}

void addEnvironment(std::vector<std::string>& words, const Board& board)
{
    words.insert(words.end(), {"--setenv", "BSP_BOARD_DIR", board.directory().string()});
    if (std::getenv("TMPDIR") != nullptr) { // NOLINT(concurrency-mt-unsafe): one thread
        words.insert(words.end(), {"--setenv", "TMPDIR", "/tmp"});
    }
}

} // namespace

int runOnBoard(const Board& place, const std::vector<std::string>& command)
{
    // A program on the board may not see the links that lead there.
    const Board board(fs::canonical(place.directory()));
    const fs::path bubblewrap = findBubblewrap();
    const fs::path workingDirectory = fs::current_path();
    Sandbox sandbox(board);
    sandbox.keepVisible(workingDirectory);
    if (const int error = findCommand(sandbox, command.front())) {
        return reportUnusable(command.front(), error);
    }
    std::vector<std::string> words = sandbox.words();
    addEnvironment(words, board);
    words.insert(words.end(), {"--chdir", workingDirectory.string(), "--"});
    words.insert(words.end(), command.begin(), command.end());
    return superviseBubblewrap(bubblewrap, words);
}
