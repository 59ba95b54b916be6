#ifndef PLATFORM_LINUX_SETTINGS_SETTINGSFILE_H
#define PLATFORM_LINUX_SETTINGS_SETTINGSFILE_H

#include "FileDescriptor.h"
#include "SettingsText.h"

#include <ctime>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace settings
{

/** Size of the largest file that is taken. */
constexpr std::size_t MaxFileSize = std::size_t{1024} * 1024;

/** What tells one state of a file from another. */
struct FileState
{
    explicit FileState(const struct stat& status);
    bool operator==(const FileState& other) const;
    /** Whether a change of the file at that time, or later, makes another state of it. */
    bool isSettled(const timespec& now) const;

    dev_t device;
    ino_t inode;
    off_t size;
    timespec modified;
    timespec changed;
};

/** What a settings file held. */
struct Contents
{
    FileState state;
    /** Whether all later states of the file differ from this one. */
    bool isSettled;
    Entries entries;
};

/** The state of the file, if there is one. @throws std::system_error */
std::optional<FileState> stateOf(const std::string& path);

/**
 * Reads a settings file as a whole. It is only ever replaced as a whole, so this needs no lock.
 *
 * @return nothing when there is no file @throws std::runtime_error with the reason
 */
std::optional<Contents> read(const std::string& path);

/** @throws std::runtime_error when it is another kind of file, or too large */
struct stat statusOfRegularFile(const syscalls::FileDescriptor& file);

/** The bytes of an open file. @throws std::runtime_error */
std::string bytesOf(const syscalls::FileDescriptor& file);

/**
 * Makes sure that a settings file that is missing takes no other's place.
 *
 * @throws std::runtime_error when beside it there is one in the format of before
 */
void refuseFormerFormat(const std::string& path);

} // namespace settings

#endif
