#include "Commands.h"

#include "BoardState.h"

#include <map>
#include <memory>

namespace
{

using os::bsp::ResetType;

struct Options
{
    std::string directory;
    std::string cause;
};

const std::map<std::string, ResetType> causes{
    {"cold", ResetType::Cold},
    {"warm", ResetType::Warm},
    {"watchdog", ResetType::Watchdog},
};

} // namespace

void addRestartCommand(CLI::App& app)
{
    CLI::App* const command = app.add_subcommand("restart", "Do to a board what a restart does");
    const auto options = std::make_shared<Options>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command->add_option("CAUSE", options->cause, "cold, warm or watchdog")
        ->required()
        ->check(CLI::IsMember({"cold", "warm", "watchdog"}));
    command->callback(
        [options] { restartBoard(Board::at(options->directory), causes.at(options->cause)); });
}
