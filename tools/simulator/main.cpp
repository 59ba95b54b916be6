#include "StandardStreams.h"
#include "UsageText.h"
#include "commands/Commands.h"
#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/CommandRunner.h"

#include <algorithm>
#include <iostream>
#include <new>
#include <streambuf>
#include <utility>

namespace
{

enum Status
{
    Failed = 1,
    WrongUsage = 2
};

/** Refuses all output. */
class NoOutput : public std::streambuf
{};

int report(const std::string& message, int status)
{
    complain(message);
    return status;
}

int reportUsage(const CLI::App& app, const std::string& message)
{
    return report(withHint(app, message), WrongUsage);
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

/** Makes two words of "--option=", whose value would otherwise be the next word. */
void separateEmptyValues(std::vector<std::string>& arguments)
{
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
        if (arguments[i].rfind("--", 0) == 0 && arguments[i].back() == '=') {
            arguments[i].pop_back();
            arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(++i), "");
        }
    }
}

int runTool(std::vector<std::string> arguments)
{
    if (isCommandRunner(arguments)) {
        return runCommand(arguments);
    }
    const std::vector<std::string> commandLine = takeCommand(arguments);
    separateEmptyValues(arguments);
    int commandStatus = 0;
    CLI::App app("Boards on the desk: directories that stand for a board.", "bsp-board");
    app.set_version_flag("--version", "bsp-board " BSP_VERSION);
    app.require_subcommand(1);
    addVariantsCommand(app);
    addCreateCommand(app);
    addShowCommand(app);
    addRestartCommand(app);
    addSetCommand(app, commandStatus);
    addRunCommand(app, commandLine, commandStatus);

    const int status = parseAndRun(app, std::move(arguments));
    if (!std::cout.flush()) {
        throw Failure("cannot write to standard output");
    }
    return status != 0 ? status : commandStatus;
}

/** Runs the tool; its exit status. */
int runAndReport(std::vector<std::string> arguments)
{
    try {
        return runTool(std::move(arguments));
    } catch (const std::filesystem::filesystem_error& error) {
        return report(Failure(error).what(), Failed);
    } catch (const std::bad_alloc&) {
        return report("not enough memory", Failed);
    } catch (const std::exception& error) {
        return report(error.what(), Failed);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const bool hasOutput = ::fcntl(STDOUT_FILENO, F_GETFD) != -1;
    tools::openMissingStandardStreams();
    NoOutput noOutput;
    std::streambuf* const former = std::cout.rdbuf();
    if (!hasOutput) {
        std::cout.rdbuf(&noOutput);
    }
    const int status = runAndReport({argv + std::min(argc, 1), argv + argc});
    std::cout.rdbuf(former);
    return status;
}
