#include "running/Run.h"

#include "BoardDirectory.h"
#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/CommandRunner.h"
#include "running/Executable.h"
#include "running/ExitStatus.h"
#include "running/Isolators.h"

#include <cstdlib>

namespace
{

namespace fs = std::filesystem;

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
        const bool isOnBoard = executable::whyNot(sandbox.onHost(candidate)) == 0;
        // Where both have such a file, the board's comes first.
        if (isOnBoard && Sandbox::isHidden(candidate) && !sandbox.isOthers(candidate)) {
            return 0;
        }
        const int onHost = executable::whyNot(candidate);
        if (onHost == 0) {
            keepVisible(sandbox, candidate);
        }
        if (onHost == 0 || isOnBoard) {
            return 0;
        }
        error = executable::worse(error, onHost);
    }
    return error;
}

int reportUnusable(const std::string& command, int error)
{
    const bool missing = error == ENOENT;
    complain(missing ? "cannot run '" + command + "': not found"
                     : Failure("cannot run '" + command + "'", error).what());
    return missing ? NotFound : NotRunnable;
}

int runIsolated(const Board& board, const std::vector<std::string>& command,
                const RunOptions& options)
{
    const fs::path workingDirectory = fs::current_path();
    Sandbox sandbox(board);
    sandbox.keepVisible(workingDirectory);
    sandbox.keepListed("PATH");
    sandbox.keepListed("LD_LIBRARY_PATH");
    for (const fs::path& path : options.visible) {
        sandbox.show(path);
    }
    if (const int error = findCommand(sandbox, command.front())) {
        return reportUnusable(command.front(), error);
    }
    Launch launch = chooseIsolator(sandbox, board, options.isolation, workingDirectory);
    launch.command = command;
    launch.environment = {{boarddirectory::Variable, board.directory()}};
    if (std::getenv("TMPDIR") != nullptr) { // NOLINT(concurrency-mt-unsafe): one thread
        launch.environment.emplace_back("TMPDIR", "/tmp");
    }
    return supervise(launch);
}

int runAlone(const Board& board, const std::vector<std::string>& command)
{
    int error = 0;
    if (!executable::find(command.front(), error)) {
        return reportUnusable(command.front(), error);
    }
    Launch launch;
    launch.command = command;
    launch.environment = {{boarddirectory::Variable, board.directory()}};
    return supervise(launch);
}

} // namespace

int runOnBoard(const Board& place, const std::vector<std::string>& command,
               const RunOptions& options)
{
    try {
        // A program on the board may not see the links that lead there.
        const Board board(fs::canonical(place.directory()));
        return options.isolation == Isolation::None ? runAlone(board, command)
                                                    : runIsolated(board, command, options);
    } catch (const fs::filesystem_error& error) {
        throw Failure(error);
    }
}
