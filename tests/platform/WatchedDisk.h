/**
 * @file
 * @brief What the disk holds when the power goes, at every step of a write to the store.
 *
 * The calls that change the disk are watched. Until a file is synchronised a power cut leaves of
 * it what it last had, until its directory is, either its old or its new name.
 */
#ifndef TESTS_PLATFORM_WATCHEDDISK_H
#define TESTS_PLATFORM_WATCHEDDISK_H

#include "Board.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace testsupport
{

/** What a crash at one instant leaves. */
struct Image
{
    std::string step;
    std::optional<std::string> store; /**< Contents of config.mdb, if there is one. */
};

/**
 * The disk as the watched calls change it.
 *
 * The steps are "write", "write through" (what is on the disk when the call returns), "sync",
 * "sync all", "sync directory", "resize" and "rename".
 */
class WatchedDisk
{
public:
    static WatchedDisk& instance();

    /** Starts to watch the board's files; what they hold counts as safe. */
    void watch(const Board& board);
    /** Ends that. @return what a crash would have left after each step */
    std::vector<Image> stop();
    /** Makes the calls of that step alone fail while the disk is watched. */
    void fail(const std::string& step, int error);

    // What the watched calls tell:

    /** Whether a call is to be made; if not, errno says why. */
    bool permits(const std::string& step) const;
    void wrote(int fd, const std::string& step, const std::string& data, off_t offset);
    void changed(const std::string& step);
    void synchronised(int fd, const std::string& step);

private:
    void takeImages(const std::string& step);

    bool m_watching = false;
    std::string m_path;
    bool m_nameIsSafe = false;
    std::map<ino_t, std::string> m_safe; /**< What of each file outlives a power cut. */
    std::vector<Image> m_images;
    std::string m_failingStep;
    int m_failure = 0;
};

} // namespace testsupport

#endif
