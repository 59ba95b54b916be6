#include "CommandRunner.h"
#include "Commands.h"
#include "Failure.h"
#include "StandardStreams.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace
{

enum Status
{
    Failed = 1,
    WrongUsage = 2
};

int report(const std::string& message, int status)
{
    std::cerr << "bsp-board: " << message << '\n';
    return status;
}

/** What is wrong with the first word that nobody took; empty when there is none. */
std::string complaint(const CLI::App& app)
{
    for (const std::string& word : app.remaining(true)) {
        if (word == "--") {
            continue;
        }
        if (word.rfind('-', 0) == 0) {
            return "unknown option '" + word + "'";
        }
        return (app.get_subcommands().empty() ? "unknown command '" : "unexpected argument '") +
               word + "'";
    }
    return "";
}

int reportUsage(const CLI::App& app, const std::string& message)
{
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : ' ' + chosen.front()->get_name();
    const std::string wrongWord = complaint(app);
    return report((wrongWord.empty() ? message : wrongWord) + "\nTry 'bsp-board" + command +
                      " --help'.",
                  WrongUsage);
}

int parseAndRun(CLI::App& app, std::vector<std::string> arguments)
{
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error) : reportUsage(app, error.what());
    } catch (const UsageError& error) {
        return reportUsage(app, error.what());
    }
}

int runTool(std::vector<std::string> arguments)
{
    if (isCommandRunner(arguments)) {
        return runCommand(arguments);
    }
    const std::vector<std::string> words = takeCommandWords(arguments);
    int commandStatus = 0;
    CLI::App app("Boards on the desk: directories that stand for a board.", "bsp-board");
    app.require_subcommand(1);
    addVariantsCommand(app);
    addCreateCommand(app);
    addShowCommand(app);
    addRestartCommand(app);
    addRunCommand(app, words, commandStatus);

    const int status = parseAndRun(app, std::move(arguments));
    if (!std::cout.flush()) {
        throw Failure("cannot write to standard output");
    }
    return status != 0 ? status : commandStatus;
}

} // namespace

int main(int argc, char* argv[])
{
    tools::openMissingStandardStreams();
    try {
        return runTool({argv + std::min(argc, 1), argv + argc});
    } catch (const std::exception& error) {
        return report(error.what(), Failed);
    }
}
