#include "Commands.h"

#include "Board.h"
#include "Executable.h"
#include "Failure.h"
#include "Sandbox.h"
#include "Supervisor.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>

namespace
{

namespace fs = std::filesystem;

enum Status
{
    NotRunnable = 126,
    NotFound = 127
};

struct Options
{
    std::string directory;
    std::string command;
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

int runOnBoard(const std::string& directory, const std::vector<std::string>& command)
{
    // A program on the board may not see the links that lead there.
    const Board board(fs::canonical(Board::at(directory).directory()));
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

bool isOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

} // namespace

std::vector<std::string> takeCommandWords(std::vector<std::string>& arguments)
{
    if (arguments.empty() || arguments.front() != "run") {
        return {};
    }
    auto directory = std::find_if(arguments.begin() + 1, arguments.end(),
                                  [](const auto& word) { return word == "--" || !isOption(word); });
    if (directory != arguments.end() && *directory == "--") {
        directory = arguments.erase(directory);
    }
    if (directory == arguments.end()) {
        return {};
    }
    auto command = directory + 1;
    if (command != arguments.end() && *command == "--") {
        ++command;
    }
    std::vector<std::string> words(command, arguments.end());
    arguments.erase(directory + 1, arguments.end());
    // Not even the directory is an option from here on.
    arguments.insert(directory, "--");
    if (!words.empty()) {
        arguments.emplace_back("COMMAND");
    }
    return words;
}

void addRunCommand(CLI::App& app, const std::vector<std::string>& words, int& status)
{
    CLI::App* const command = app.add_subcommand(
        "run", "Run a command on a board: with its /dev/shm, /tmp and /sys/class/leds");
    const auto options = std::make_shared<Options>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command
        ->add_option("COMMAND", options->command,
                     "The command with its words, after an optional --; the exit status is its own")
        ->required();
    command->callback(
        [options, &words, &status] { status = runOnBoard(options->directory, words); });
}
