#include "StandardStreams.h"
#include "commands/Commands.h"
#include "report/Failure.h"
#include "report/UsageText.h"
#include "running/CommandRunner.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <new>
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

int reportUsage(const CLI::App& app, const std::string& message)
{
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : ' ' + chosen.front()->get_name();
    return report(message + "\nTry 'bsp-board" + command + " --help'.", WrongUsage);
}

int parseAndRun(CLI::App& app, std::vector<std::string> arguments)
{
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? app.exit(error)
                                          : reportUsage(app, usageText(app, error));
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
    app.set_version_flag("--version", "bsp-board " BSP_VERSION);
    app.require_subcommand(1);
    addVariantsCommand(app);
    addCreateCommand(app);
    addShowCommand(app);
    addRestartCommand(app);
    addSetCommand(app, commandStatus);
    addRunCommand(app, words, commandStatus);

    const int status = parseAndRun(app, std::move(arguments));
    if (!std::cout.flush()) {
        throw Failure("cannot write to standard output");
    }
    return status != 0 ? status : commandStatus;
}

std::string textOf(const std::filesystem::filesystem_error& error)
{
    const std::string path = error.path1().string();
    return Failure(path.empty() ? "cannot find the working directory" : "cannot use '" + path + "'",
                   error.code().value())
        .what();
}

} // namespace

int main(int argc, char* argv[])
{
    tools::openMissingStandardStreams();
    try {
        return runTool({argv + std::min(argc, 1), argv + argc});
    } catch (const std::filesystem::filesystem_error& error) {
        return report(textOf(error), Failed);
    } catch (const std::bad_alloc&) {
        return report("not enough memory", Failed);
    } catch (const std::exception& error) {
        return report(error.what(), Failed);
    }
}
