#ifndef TOOLS_SIMULATOR_RUNNING_SANDBOX_H
#define TOOLS_SIMULATOR_RUNNING_SANDBOX_H

#include "board/Board.h"

#include <filesystem>
#include <string>
#include <vector>

/**
 * The host as a program on a board sees it: with the board's own /dev/shm, /tmp and
 * /sys/class/leds, and otherwise as it is.
 */
class Sandbox
{
public:
    /**
     * Makes the directories that a board has and its archive lost because they were empty.
     *
     * @throws Failure when this is no simulated board
     */
    explicit Sandbox(const Board& board);

    /**
     * Keeps a path of the host visible where the board's own directories would hide it, together
     * with everything below the same entry of the host's directory.
     */
    void keepVisible(const std::filesystem::path& path);

    /** Keeps just this path of the host visible, whatever the board has there. @throws Failure */
    void show(const std::filesystem::path& path);

    /**
     * Keeps directories of the host visible that a variable lists, such as PATH, except where the
     * board has a directory of its own, and not of another user's, with something in it.
     */
    void keepListed(const char* variable);

    /** Where a path of the board lies on the host, should it be one of the board's own files. */
    std::filesystem::path onHost(const std::filesystem::path& path) const;

    /**
     * Whether another user has put what a path of the board leads through into one of the board's
     * own directories. It then gives way to the host's.
     */
    bool isOthers(const std::filesystem::path& path) const;

    /** Whether the board's own directories hide this path of the host. */
    static bool isHidden(const std::filesystem::path& path);

    /** The arguments that tell bubblewrap all this. */
    std::vector<std::string> argumentsForBubblewrap() const;

    /** The same for proot, started in the board's directory. @throws Failure */
    std::vector<std::string> argumentsForProot() const;

private:
    /** A directory of the host that the board has one of its own for. */
    struct Replacement
    {
        std::filesystem::path place;
        std::filesystem::path own;
    };

    std::vector<Replacement> m_replacements;
    std::vector<std::filesystem::path> m_visible;
    std::vector<std::filesystem::path> m_shown;
    std::filesystem::path m_leds;
};

#endif
