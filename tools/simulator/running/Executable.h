/**
 * @file
 * @brief Finds programs as a shell does.
 */
#ifndef TOOLS_SIMULATOR_RUNNING_EXECUTABLE_H
#define TOOLS_SIMULATOR_RUNNING_EXECUTABLE_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace executable
{

/** The files that a command's first word may mean, best first. */
std::vector<std::filesystem::path> candidates(const std::string& command);

/** Which of several errors of trying candidates to tell: that a file is not there is the least. */
int worse(int error, int other);

/** The first of them that can be run; the error, should there be none. */
std::optional<std::filesystem::path> find(const std::string& command, int& error);

/** 0 when the file can be run, otherwise the error of trying it. */
int whyNot(const std::filesystem::path& file);

} // namespace executable

#endif
