/**
 * @file
 * @brief How commands come to a board: by one open directory, and with regard to other users. All
 *        functions throw Failure.
 */
#ifndef TOOLS_SIMULATOR_BOARD_BOARDACCESS_H
#define TOOLS_SIMULATOR_BOARD_BOARDACCESS_H

#include "board/Directory.h"

/** Whether root works on what other users can change. */
enum class OtherUsers
{
    Refused,
    Trusted
};

/** The option that says so. */
constexpr const char* TrustOption = "--trust-other-users";
constexpr const char* TrustOptionHelp =
    "As root, work also on a board that other users can change: they decide what happens";

/**
 * Where this user is root and refuses other users, requires that they can change neither the board
 * nor the way to it.
 *
 * They can when they own, or may write to, a directory on the way, the board's directory, an entry
 * of it, or anything below its LEDs. Directories on the way may be shared as /tmp is, each entry
 * its owner's, and so may the board's shared memory and temporary files.
 */
void requireUnchangeable(const std::filesystem::path& board, OtherUsers others);

/** Opens a board's directory, which must not be a symbolic link, under the same requirement. */
Directory openBoard(const std::filesystem::path& board, OtherUsers others);

/** Requires that a directory has something that makes it a board. */
void requireBoard(const Directory& directory);

enum class Use
{
    Shared,
    Exclusive
};

/** Waits for others that use the board, up to ten seconds; the board is then held until closed. */
void hold(const Directory& board, Use use);

/** Whether somebody other than this user and root owns something. */
bool othersOwn(const struct stat& status);

/** Whether users other than this one and root may put something else into a directory's place. */
bool othersCanReplaceEntries(const struct stat& directory);

#endif
