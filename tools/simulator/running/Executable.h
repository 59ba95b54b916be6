/**
 * @file
 * @brief Finds programs as a shell does.
 */
#ifndef TOOLS_BOARD_EXECUTABLE_H
#define TOOLS_BOARD_EXECUTABLE_H

#include <filesystem>
#include <string>
#include <vector>

namespace executable
{

/** The files that a command's first word may mean, best first. */
std::vector<std::filesystem::path> candidates(const std::string& command);

/** 0 when the file can be run, otherwise the error of trying it. */
int whyNot(const std::filesystem::path& file);

} // namespace executable

#endif
