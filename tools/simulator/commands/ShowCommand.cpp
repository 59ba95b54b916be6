#include "commands/Commands.h"

#include "board/BoardAccess.h"
#include "report/BoardDocument.h"
#include "report/BoardReport.h"
#include "report/Failure.h"

#include <iostream>
#include <memory>

#include <fcntl.h>

namespace
{

struct ShowArguments
{
    std::string directory;
    bool dump = false;
    bool isJson = false;
};

/** Only looked at, so that a link to the board will do. */
Directory openToLook(const std::string& path)
{
    const Board board = Board::at(path);
    syscalls::FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory.isOpen()) {
        throw Failure("cannot read '" + path + "'", errno);
    }
    return {std::move(directory), board.directory()};
}

void show(const ShowArguments& options)
{
    const Directory board = openToLook(options.directory);
    requireBoard(board);
    hold(board, Use::Shared);
    if (options.isJson) {
        writeBoardDocument(std::cout, Board(board.name()));
    } else {
        reportBoard(std::cout, Board(board.name()), options.dump);
    }
}

} // namespace

void addShowCommand(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("show", "Show what a board is and what is on it, changing nothing");
    const auto options = std::make_shared<ShowArguments>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command->add_flag("--dump", options->dump, "Also dump the used blocks of the warm area");
    command->add_flag("--json", options->isJson, "Print a document for programs")
        ->excludes("--dump");
    command->callback([options] { show(*options); });
}
