#include "UsageText.h"

namespace
{

/** About the first word that nobody took; empty when there is none. */
std::string wrongWord(const CLI::App& app)
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

/** About an option or argument that is required, given twice, or has no value or one too many. */
std::string wrongOption(const CLI::App& command, const CLI::ParseError& error)
{
    for (const CLI::Option* const option : command.get_options()) {
        const std::string name = option->get_name();
        if (option->get_required() && option->empty()) {
            return name + " is required";
        }
        if (option->count() > 1) {
            return name + " is given more than once";
        }
    }
    const std::string message = error.what();
    for (const CLI::Option* const option : command.get_options()) {
        const std::string name = option->get_name();
        if (message.find(name) != std::string::npos) {
            return name +
                   (option->get_items_expected_max() == 0 ? " takes no value" : " needs a value");
        }
    }
    return "the command line makes no sense";
}

} // namespace

std::string usageText(const CLI::App& app, const CLI::ParseError& error)
{
    std::string word = wrongWord(app);
    if (!word.empty()) {
        return word;
    }
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    return chosen.empty() ? "a command is missing" : wrongOption(*chosen.front(), error);
}

std::string withHint(const CLI::App& app, const std::string& message)
{
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : ' ' + chosen.front()->get_name();
    return message + "\nTry '" + app.get_name() + command + " --help'.";
}
