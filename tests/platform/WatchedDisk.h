/**
 * @file
 * @brief What the disk holds when the power goes, at every step of a write to the store.
 *
 * The calls that change the disk are watched. Until a file is synchronised a power cut leaves half
 * of what was written to it; until its directory is, it has either its old or its new name.
 */
#ifndef TESTS_PLATFORM_WATCHEDDISK_H
#define TESTS_PLATFORM_WATCHEDDISK_H

#include "Board.h"

#include <functional>
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
    std::optional<std::string> store; /**< Contents of settings, if there is such a file. */
};

/**
 * The disk as the watched calls change it.
 *
 * The steps are "write", "sync", "rename" and "sync directory".
 */
class WatchedDisk
{
public:
    static WatchedDisk& instance();

    /**
     * Starts to watch the board's files; what they hold counts as safe.
     * @param atEachStep  called after each
     */
    void watch(
        const Board& board, std::function<void()> atEachStep = [] {});
    /** Ends that. @return what a crash would have left after each step */
    std::vector<Image> stop();
    /** Makes the calls of that step alone fail while the disk is watched. */
    void fail(const std::string& step, int error);

private:
    /** Whether a call is to be made; if not, errno says why. */
    bool permits(const std::string& step) const;
    void wrote(int fd);
    void synchronised(int fd);
    void takeImages(const std::string& step);
    std::optional<std::string> safeContents() const;

    std::string m_path;
    std::function<void()> m_atEachStep;
    std::optional<std::string> m_named; /**< What a power cut leaves when it takes the new name. */
    bool m_nameIsSafe = false;
    std::map<ino_t, std::string> m_safe; /**< What of each file outlives a power cut. */
    std::vector<Image> m_images;
    std::string m_failingStep;
    int m_failure = 0;
};

} // namespace testsupport

#endif
