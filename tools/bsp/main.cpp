#include "Command.h"
#include "StandardStreams.h"

#include <cstring>
#include <iomanip>
#include <iostream>

namespace
{

constexpr int NameWidth = 20;

/** The text after the last "/", all of it when there is none. */
const char* baseName(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash == nullptr ? path : slash + 1;
}

const CommandGroup* findGroup(const char* name)
{
    for (const CommandGroup& group : commandGroups) {
        if (std::strcmp(group.name, name) == 0) {
            return &group;
        }
    }
    return nullptr;
}

const Command* findCommand(const CommandGroup& group, const char* name)
{
    for (const Command& command : *group.commands) {
        if (std::strcmp(command.name, name) == 0) {
            return &command;
        }
    }
    return nullptr;
}

int listCommands(const char* invocationName)
{
    std::cerr << "Usage: " << invocationName << " <function> [arguments]" << std::endl;
    const CommandGroup* group = findGroup(invocationName);
    if (group == nullptr) {
        return 1;
    }
    for (const Command& command : *group->commands) {
        std::cout << group->name << ' ' << std::setw(NameWidth) << std::left << command.name << ' '
                  << command.description << std::endl;
    }
    return 1;
}

} // namespace

int main(int argc, char* argv[])
{
    tools::openMissingStandardStreams();
    // A caller may start the program without any word, not even its name.
    const char* invocationName = argc > 0 && argv[0] != nullptr ? baseName(argv[0]) : "";
    if (argc < 2) {
        return listCommands(invocationName);
    }
    const CommandGroup* group = findGroup(invocationName);
    const Command* command = group == nullptr ? nullptr : findCommand(*group, argv[1]);
    if (command == nullptr) {
        std::cerr << "Unknown function: " << argv[1] << std::endl;
        return 1;
    }
    return command->handler(argc - 2, argv + 2);
}
