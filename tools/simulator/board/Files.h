/**
 * @file
 * @brief Reads and writes the files of a board. All functions throw Failure.
 */
#ifndef TOOLS_SIMULATOR_BOARD_FILES_H
#define TOOLS_SIMULATOR_BOARD_FILES_H

#include "FileDescriptor.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace files
{

/** The first bytes of a file or of a device's memory, fewer where the file is shorter. */
std::string readStart(const std::filesystem::path& path, std::size_t size);

/** The first bytes of a file; it is a failure when it is shorter. */
std::string readExactly(const std::filesystem::path& path, std::size_t size);

/** Whether there is such a file; it throws nothing. */
bool isThere(const std::filesystem::path& path);

/** Writes bytes where an open file stands. */
void write(const syscalls::FileDescriptor& file, const std::filesystem::path& name,
           const std::string& contents);

/** Makes an open file hold just this. */
void replace(const syscalls::FileDescriptor& file, const std::filesystem::path& name,
             const std::string& contents);

} // namespace files

#endif
