#include "commands/CommandLine.h"

#include "UsageText.h"
#include "commands/Commands.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace
{

int report(const std::string& message, int status)
{
    std::cerr << "bsp-diag: " << message << '\n';
    return status;
}

int reportUsage(const CLI::App& app, const std::string& message)
{
    return report(withHint(app, message), WrongUsage);
}

int run(std::vector<std::string> arguments)
{
    int status = Done;
    CLI::App app("What this board is, whether it is healthy, and how to take it to one's desk.",
                 "bsp-diag");
    app.set_version_flag("--version", "bsp-diag " BSP_VERSION);
    app.require_subcommand(1);
    addInfoCommand(app, status);
    addCheckCommand(app, status);
    addRepairCommand(app, status);
    addCaptureCommand(app, status);
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        status =
            error.get_exit_code() == 0 ? app.exit(error) : reportUsage(app, usageText(app, error));
    } catch (const UsageError& error) {
        status = reportUsage(app, error.what());
    }
    return std::cout.flush() ? status : report("cannot write to standard output", CannotLook);
}

} // namespace

int runCommandLine(int argc, char* argv[])
{
    try {
        return run({argv + std::min(argc, 1), argv + argc});
    } catch (const std::exception& error) {
        return report(error.what(), CannotLook);
    }
}
