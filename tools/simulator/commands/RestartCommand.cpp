#include "commands/Commands.h"

#include "board/BoardAccess.h"
#include "board/BoardState.h"
#include "report/Failure.h"

#include <map>
#include <memory>

namespace
{

using os::bsp::ResetType;

struct RestartArguments
{
    std::string directory;
    std::string cause;
    bool trustOthers = false;
};

const std::map<std::string, ResetType> causes{
    {"cold", ResetType::Cold},
    {"warm", ResetType::Warm},
    {"watchdog", ResetType::Watchdog},
};

ResetType parsedCause(const std::string& cause)
{
    const auto found = causes.find(cause);
    if (found == causes.end()) {
        throw UsageError("'" + cause + "' is no kind of restart; it can be cold, warm or watchdog");
    }
    return found->second;
}

void restart(const RestartArguments& options)
{
    const ResetType cause = parsedCause(options.cause);
    const Directory board = openBoard(options.directory, options.trustOthers ? OtherUsers::Trusted
                                                                             : OtherUsers::Refused);
    hold(board, Use::Exclusive);
    restartBoard(board, cause);
}

} // namespace

void addRestartCommand(CLI::App& app)
{
    CLI::App* const command = app.add_subcommand("restart", "Do to a board what a restart does");
    const auto options = std::make_shared<RestartArguments>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command->add_option("CAUSE", options->cause, "cold, warm or watchdog")->required();
    command->add_flag(TrustOption, options->trustOthers, TrustOptionHelp);
    command->callback([options] { restart(*options); });
}
