#include "Sandbox.h"

#include "Failure.h"

#include <algorithm>
#include <initializer_list>

namespace
{

namespace fs = std::filesystem;

constexpr const char* SharedMemory = "/dev/shm";
constexpr const char* TemporaryFiles = "/tmp";
constexpr const char* Leds = "/sys/class/leds";

/** Path of something below a directory, from there; empty for the directory and all else. */
fs::path below(const fs::path& directory, const fs::path& path)
{
    const fs::path relative = path.lexically_normal().lexically_relative(directory);
    return relative.empty() || relative == "." || *relative.begin() == ".." ? fs::path() : relative;
}

using Words = std::vector<std::string>;

void add(Words& words, std::initializer_list<std::string> more)
{
    words.insert(words.end(), more);
}

/** Not every machine has LEDs, and nobody can make directories in the kernel's own. */
void addLeds(Words& words, const fs::path& own)
{
    const fs::path place = Leds;
    if (!fs::is_directory(place)) {
        const fs::path classes = place.parent_path();
        const fs::path system = classes.parent_path();
        if (!fs::is_directory(system)) {
            throw Failure("cannot show the LEDs: there is no " + system.string());
        }
        add(words, {"--tmpfs", (fs::is_directory(classes) ? classes : system).string()});
    }
    add(words, {"--bind", own.string(), place.string()});
}

} // namespace

Sandbox::Sandbox(const Board& board)
    : m_replacements{{SharedMemory, board.sharedMemory()},
                     {TemporaryFiles, board.temporaryFiles()}},
      m_leds(board.leds())
{
    for (const fs::path& directory : {board.sharedMemory(), board.temporaryFiles(), m_leds}) {
        if (!fs::is_directory(directory)) {
            throw Failure("there is no '" + directory.string() +
                          "': only a simulated board can run a command");
        }
    }
    keepVisible(board.directory());
}

bool Sandbox::isHidden(const fs::path& path)
{
    return !below(SharedMemory, path).empty() || !below(TemporaryFiles, path).empty();
}

void Sandbox::keepVisible(const fs::path& path)
{
    for (const Replacement& replacement : m_replacements) {
        const fs::path relative = below(replacement.place, path);
        if (relative.empty()) {
            continue;
        }
        const fs::path entry = replacement.place / *relative.begin();
        if (std::find(m_visible.begin(), m_visible.end(), entry) == m_visible.end()) {
            m_visible.push_back(entry);
        }
    }
}

fs::path Sandbox::onHost(const fs::path& path) const
{
    for (const Replacement& replacement : m_replacements) {
        const fs::path relative = below(replacement.place, path);
        if (!relative.empty()) {
            return replacement.own / relative;
        }
    }
    return path;
}

Words Sandbox::words() const
{
    Words words{"--dev-bind", "/", "/"};
    for (const Replacement& replacement : m_replacements) {
        add(words, {"--bind", replacement.own.string(), replacement.place.string()});
    }
    for (const fs::path& path : m_visible) {
        add(words, {"--dev-bind", path.string(), path.string()});
    }
    addLeds(words, m_leds);
    return words;
}
