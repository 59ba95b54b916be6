#include "commands/Commands.h"

#include "board/BoardAccess.h"
#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/ExitStatus.h"
#include "running/Run.h"

#include <algorithm>
#include <map>
#include <memory>

namespace
{

struct RunArguments
{
    std::string directory;
    std::string command;
    std::string isolation;
    std::vector<std::string> visible;
    bool trustOthers = false;
};

const std::map<std::string, Isolation> isolations{
    {"bubblewrap", Isolation::Bubblewrap},
    {"proot", Isolation::Proot},
    {"none", Isolation::None},
};

/** The options whose value may be the next word. */
const std::vector<std::string> optionsWithValue{"--isolate", "--bind"};

bool isOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

/** The first word that is no option and no option's value. */
std::vector<std::string>::iterator findDirectory(std::vector<std::string>& arguments)
{
    auto word = arguments.begin() + 1;
    while (word != arguments.end() && *word != "--" && isOption(*word)) {
        const bool takesNext = std::find(optionsWithValue.begin(), optionsWithValue.end(), *word) !=
                                   optionsWithValue.end() &&
                               word + 1 != arguments.end();
        word += takesNext ? 2 : 1;
    }
    return word;
}

Isolation parsedIsolation(const std::string& word)
{
    const auto found = isolations.find(word);
    if (found == isolations.end()) {
        throw UsageError("--isolate is bubblewrap, proot or none, not '" + word + "'");
    }
    return found->second;
}

int run(const RunArguments& given, const std::vector<std::string>& commandLine,
        bool isIsolationGiven)
{
    RunOptions options;
    if (isIsolationGiven) {
        options.isolation = parsedIsolation(given.isolation);
    }
    options.visible.assign(given.visible.begin(), given.visible.end());
    try {
        requireUnchangeable(given.directory,
                            given.trustOthers ? OtherUsers::Trusted : OtherUsers::Refused);
        return runOnBoard(Board::at(given.directory), commandLine, options);
    } catch (const Failure& failure) {
        complain(failure.what());
        return NotStarted;
    }
}

} // namespace

std::vector<std::string> takeCommand(std::vector<std::string>& arguments)
{
    if (arguments.empty() || arguments.front() != "run") {
        return {};
    }
    auto directory = findDirectory(arguments);
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
    std::vector<std::string> commandLine(command, arguments.end());
    arguments.erase(directory + 1, arguments.end());
    // Not even the directory is an option from here on.
    arguments.insert(directory, "--");
    if (!commandLine.empty()) {
        arguments.emplace_back("COMMAND");
    }
    return commandLine;
}

void addRunCommand(CLI::App& app, const std::vector<std::string>& commandLine, int& status)
{
    CLI::App* const command = app.add_subcommand(
        "run", "Run a command on a board: with its /dev/shm, /tmp and /sys/class/leds");
    const auto options = std::make_shared<RunArguments>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command
        ->add_option("COMMAND", options->command,
                     "The command with its words, after an optional --; the exit status is its own")
        ->required();
    CLI::Option* const isolation =
        command->add_option("--isolate", options->isolation,
                            "What separates the board from the host: bubblewrap, proot or none");
    command->add_option("--bind", options->visible,
                        "Keep this path of the host visible on the board; may be repeated");
    command->add_flag(TrustOption, options->trustOthers, TrustOptionHelp);
    command->callback([options, isolation, &commandLine, &status] {
        status = run(*options, commandLine, isolation->count() != 0);
    });
}
