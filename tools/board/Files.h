/**
 * @file
 * @brief Reads and writes the files of a board. All functions throw Failure.
 */
#ifndef TOOLS_BOARD_FILES_H
#define TOOLS_BOARD_FILES_H

#include <cstddef>
#include <filesystem>
#include <string>

namespace files
{

/** The first bytes of a file or of a device's memory, fewer where the file is shorter. */
std::string readStart(const std::filesystem::path& path, std::size_t size);

/** Makes a file that does not exist yet. */
void create(const std::filesystem::path& path, const std::string& contents);

/** Makes the file hold just this, whether it existed or not. */
void replace(const std::filesystem::path& path, const std::string& contents);

/** Writes the first bytes of an existing file and leaves the rest. */
void overwriteStart(const std::filesystem::path& path, const std::string& contents);

/** Makes a directory, with these permissions whatever the umask. */
void makeSharedDirectory(const std::filesystem::path& path);

/** Removes what is in a directory, not the directory; no symbolic link is followed. */
void empty(const std::filesystem::path& directory);

} // namespace files

#endif
