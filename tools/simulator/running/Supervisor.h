#ifndef TOOLS_SIMULATOR_RUNNING_SUPERVISOR_H
#define TOOLS_SIMULATOR_RUNNING_SUPERVISOR_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/** How to start a command. */
struct Launch
{
    enum class Through
    {
        Bubblewrap,
        Proot,
        Nothing
    };

    Through through = Through::Nothing;
    /** bubblewrap or proot. */
    std::filesystem::path program;
    std::vector<std::string> programArguments;
    std::vector<std::string> command;
    /** The directory that the arguments' relative paths start at, where that is another. */
    std::filesystem::path directory;
    std::vector<std::pair<std::string, std::string>> environment;
    /** What to say when proot is not allowed its work here; its own words and ')' follow. */
    std::string refusal;
};

/**
 * Starts a command and waits for its end.
 *
 * Signals that are sent to this process go to the command. When this process is killed, so is all
 * that the command has started. Where a signal of the terminal ends bubblewrap but not the command,
 * the command is waited for all the same.
 *
 * @return the command's exit status, 128 + N when signal N ended it, 125 when it was not started;
 *         then standard error says why
 */
int supervise(const Launch& launch);

#endif
