#include "Commands.h"

#include "BoardReport.h"

#include <iostream>
#include <memory>

namespace
{

struct Options
{
    std::string directory;
    bool dump = false;
};

} // namespace

void addShowCommand(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("show", "Show what a board is and what is on it, changing nothing");
    const auto options = std::make_shared<Options>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command->add_flag("--dump", options->dump, "Also dump the used blocks of the warm area");
    command->callback(
        [options] { reportBoard(std::cout, Board::at(options->directory), options->dump); });
}
