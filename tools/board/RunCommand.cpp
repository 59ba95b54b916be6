#include "Commands.h"

#include "Run.h"

#include <algorithm>
#include <memory>

namespace
{

struct Options
{
    std::string directory;
    std::string command;
};

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
        [options, &words, &status] { status = runOnBoard(Board::at(options->directory), words); });
}
