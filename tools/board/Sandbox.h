#ifndef TOOLS_BOARD_SANDBOX_H
#define TOOLS_BOARD_SANDBOX_H

#include "Board.h"

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
    explicit Sandbox(const Board& board);

    /**
     * Keeps a path of the host visible where the board's own directories would hide it, together
     * with everything below the same entry of the host's directory.
     */
    void keepVisible(const std::filesystem::path& path);

    /** Where a path of the board lies on the host, should it be one of the board's own files. */
    std::filesystem::path onHost(const std::filesystem::path& path) const;

    /** Whether the board's own directories hide this path of the host. */
    static bool isHidden(const std::filesystem::path& path);

    /** The words that tell bubblewrap all this. */
    std::vector<std::string> words() const;

private:
    /** A directory of the host that the board has one of its own for. */
    struct Replacement
    {
        std::filesystem::path place;
        std::filesystem::path own;
    };

    std::vector<Replacement> m_replacements;
    std::vector<std::filesystem::path> m_visible;
    std::filesystem::path m_leds;
};

#endif
