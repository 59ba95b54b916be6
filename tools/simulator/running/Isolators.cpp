#include "running/Isolators.h"

#include "report/Failure.h"
#include "running/CommandRunner.h"
#include "running/Executable.h"
#include "running/ExitStatus.h"
#include "running/Starter.h"

#include <csignal>
#include <optional>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr const char* Impossible =
    "cannot separate a board from the host, which takes namespaces or ptrace: ";

std::optional<fs::path> find(const std::string& program)
{
    int ignored = 0;
    return executable::find(program, ignored);
}

/** What bubblewrap says when it does the same for a command that does nothing; empty: it can. */
std::string bubblewrapsRefusal(const fs::path& bubblewrap, std::vector<std::string> arguments)
{
    const syscalls::FileDescriptor complaints = makeScratchFile();
    arguments.insert(arguments.begin(), "bwrap");
    arguments.insert(arguments.end(), {"--", "/bin/true"});
    // There is no status where the parent ignores it.
    static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
    const pid_t process = ::fork();
    if (process == -1) {
        throw Failure("cannot start a process", errno);
    }
    if (process == 0) {
        leaveStandardStreams(complaints);
        become(bubblewrap, arguments);
        ::_exit(NotStarted);
    }
    const int status = waitForEnd(process);
    if (status == 0) {
        return "";
    }
    const std::string line = firstLine(complaints);
    return line.empty() ? "exit status " + std::to_string(status) : line;
}

/** Why a program cannot be used, for the message when none remains. */
std::string refused(const std::string& program)
{
    return program + " is refused here (";
}

/** Tries to use bubblewrap; the reason when that is not possible. */
std::string tryBubblewrap(Launch& launch, const Sandbox& sandbox, const fs::path& workingDirectory)
{
    const std::optional<fs::path> program = find("bwrap");
    if (!program) {
        return "bubblewrap is not installed";
    }
    std::vector<std::string> arguments = sandbox.argumentsForBubblewrap();
    arguments.insert(arguments.end(), {"--chdir", workingDirectory.string()});
    const std::string refusal = bubblewrapsRefusal(*program, arguments);
    if (!refusal.empty()) {
        return refused("bubblewrap") + refusal + ')';
    }
    launch.through = Launch::Through::Bubblewrap;
    launch.program = *program;
    launch.programArguments = arguments;
    return "";
}

/** The same for proot; whether it is refused shows when it is used. */
std::string tryProot(Launch& launch, const Sandbox& sandbox, const Board& board,
                     const fs::path& workingDirectory)
{
    const std::optional<fs::path> program = find("proot");
    if (!program) {
        return "proot is not installed";
    }
    launch.through = Launch::Through::Proot;
    launch.program = *program;
    Sandbox withRunner = sandbox;
    if (const fs::path own = ownProgram(); Sandbox::isHidden(own)) {
        withRunner.show(own);
    }
    launch.programArguments = withRunner.argumentsForProot();
    launch.programArguments.insert(launch.programArguments.end(),
                                   {"-w", workingDirectory.string()});
    launch.directory = board.directory();
    launch.refusal += refused("proot");
    return "";
}

std::string howToInstall(bool bubblewrap, bool proot)
{
    return std::string(" (on Debian: apt-get install") + (bubblewrap ? " bubblewrap" : "") +
           (proot ? " proot" : "") + ')';
}

} // namespace

Launch chooseIsolator(const Sandbox& sandbox, const Board& board, Isolation isolation,
                      const fs::path& workingDirectory)
{
    Launch launch;
    launch.refusal = Impossible;
    std::string reason;
    if (isolation != Isolation::Proot) {
        reason = tryBubblewrap(launch, sandbox, workingDirectory);
        if (reason.empty()) {
            return launch;
        }
        launch.refusal += reason + "; ";
    }
    if (isolation != Isolation::Bubblewrap) {
        const std::string prootsReason = tryProot(launch, sandbox, board, workingDirectory);
        if (prootsReason.empty()) {
            return launch;
        }
        reason += (reason.empty() ? "" : "; ") + prootsReason;
    }
    const bool bubblewrapMissing = reason.rfind("bubblewrap is not", 0) == 0;
    const bool prootMissing = isolation != Isolation::Bubblewrap;
    throw Failure(
        Impossible + reason +
        (bubblewrapMissing || prootMissing ? howToInstall(bubblewrapMissing, prootMissing) : ""));
}
