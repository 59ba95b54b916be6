#include "running/Sandbox.h"

#include "Hardware.h"
#include "board/BoardAccess.h"
#include "report/Failure.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

constexpr const char* SharedMemory = "/dev/shm";
constexpr const char* TemporaryFiles = "/tmp";

/** Path of something below a directory, from there; empty for the directory and all else. */
fs::path below(const fs::path& directory, const fs::path& path)
{
    const fs::path relative = path.lexically_normal().lexically_relative(directory);
    return relative.empty() || relative == "." || *relative.begin() == ".." ? fs::path() : relative;
}

using Arguments = std::vector<std::string>;

void add(Arguments& arguments, std::initializer_list<std::string> more)
{
    arguments.insert(arguments.end(), more);
}

/** Not every machine has LEDs, and nobody can make directories in the kernel's own. */
void addLeds(Arguments& arguments, const fs::path& own)
{
    const fs::path place = hardware::LedsDirectory;
    if (!fs::is_directory(place)) {
        const fs::path classes = place.parent_path();
        const fs::path system = classes.parent_path();
        if (!fs::is_directory(system)) {
            throw Failure("cannot show the LEDs: there is no " + system.string());
        }
        add(arguments, {"--tmpfs", (fs::is_directory(classes) ? classes : system).string()});
    }
    add(arguments, {"--bind", own.string(), place.string()});
}

fs::file_type typeOf(const fs::path& path)
{
    std::error_code ignored;
    return fs::symlink_status(path, ignored).type();
}

[[noreturn]] void refuse(const fs::path& path, const std::string& problem)
{
    throw Failure("only a simulated board can run a command: '" + path.string() + "' " + problem);
}

/** Real boards have links to devices here; other directories have nothing. */
bool hasOwnHardware(const Board& board)
{
    const auto isFile = [](const fs::path& path) { return typeOf(path) == fs::file_type::regular; };
    return isFile(board.eeprom()) || isFile(board.dtcm()) || isFile(board.registers());
}

void makeShared(const Board& board, const std::string& entry)
{
    const auto directory = Directory::open(board.directory());
    if (!directory) {
        throw Failure("cannot open '" + board.directory().string() + "'", errno);
    }
    directory->makeShared(entry);
}

void requireDirectory(const Board& board, const fs::path& path)
{
    if (typeOf(path) == fs::file_type::not_found && hasOwnHardware(board)) {
        try {
            makeShared(board, path.filename());
        } catch (const Failure&) {
            // Another command on the same board may have been faster.
            if (typeOf(path) != fs::file_type::directory) {
                throw;
            }
        }
    }
    switch (typeOf(path)) {
    case fs::file_type::directory:
        return;
    case fs::file_type::symlink:
        refuse(path, "is a link");
    default:
        refuse(path, "is no directory");
    }
}

/** A link would lead programs that use an LED to a file of the host's. */
void requireNoLinks(const fs::path& leds)
{
    std::error_code error;
    fs::recursive_directory_iterator entry(leds, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (typeOf(entry->path()) == fs::file_type::symlink) {
            refuse(entry->path(), "is a link");
        }
    }
    if (error) {
        throw Failure("cannot read '" + leds.string() + "'", error.value());
    }
}

/** proot separates two paths by a colon, and a last exclamation mark is a word of its own. */
std::string forProot(const fs::path& path)
{
    std::string text = path.string();
    if (text.find(':') != std::string::npos || text.back() == '!') {
        throw Failure("proot cannot show '" + text + "': its name has ':' or ends in '!'");
    }
    return text;
}

} // namespace

Sandbox::Sandbox(const Board& board)
    : m_replacements{{SharedMemory, board.sharedMemory()},
                     {TemporaryFiles, board.temporaryFiles()}},
      m_leds(board.leds())
{
    for (const fs::path& directory : {board.sharedMemory(), board.temporaryFiles(), m_leds}) {
        requireDirectory(board, directory);
    }
    requireNoLinks(m_leds);
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

void Sandbox::show(const fs::path& path)
{
    std::error_code error;
    if (!fs::exists(path, error)) {
        throw Failure("cannot show '" + path.string() + "'", error ? error.value() : ENOENT);
    }
    m_shown.push_back(fs::absolute(path).lexically_normal());
}

void Sandbox::keepListed(const char* variable)
{
    const char* const value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): one thread
    std::istringstream directories(value == nullptr ? "" : value);
    for (std::string name; std::getline(directories, name, ':');) {
        std::error_code ignored;
        for (const fs::path& directory : {fs::path(name), fs::canonical(name, ignored)}) {
            const bool boardHasIt = fs::exists(onHost(directory), ignored) &&
                                    !fs::is_empty(onHost(directory), ignored) &&
                                    !isOthers(directory);
            if (isHidden(directory) && !boardHasIt && fs::is_directory(directory, ignored)) {
                keepVisible(directory);
            }
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

bool Sandbox::isOthers(const fs::path& path) const
{
    for (const Replacement& replacement : m_replacements) {
        const fs::path relative = below(replacement.place, path);
        struct stat status
        {};
        if (!relative.empty() &&
            ::lstat((replacement.own / *relative.begin()).c_str(), &status) == 0) {
            return othersOwn(status);
        }
    }
    return false;
}

Arguments Sandbox::argumentsForBubblewrap() const
{
    Arguments arguments{"--dev-bind", "/", "/"};
    for (const Replacement& replacement : m_replacements) {
        add(arguments, {"--bind", replacement.own.string(), replacement.place.string()});
    }
    for (const fs::path& path : m_visible) {
        add(arguments, {"--dev-bind", path.string(), path.string()});
    }
    addLeds(arguments, m_leds);
    for (const fs::path& path : m_shown) {
        add(arguments, {"--dev-bind", path.string(), path.string()});
    }
    return arguments;
}

Arguments Sandbox::argumentsForProot() const
{
    // Its remarks on programs that signals end are not asked for.
    Arguments arguments{"-v", "-1"};
    const auto bind = [&arguments](const fs::path& own, const std::string& place) {
        add(arguments, {"-b", own.filename().string() + ':' + place});
    };
    for (const Replacement& replacement : m_replacements) {
        bind(replacement.own, replacement.place.string());
    }
    bind(m_leds, hardware::LedsDirectory);
    for (const std::vector<fs::path>* paths : {&m_visible, &m_shown}) {
        for (const fs::path& path : *paths) {
            add(arguments, {"-b", forProot(path)});
        }
    }
    return arguments;
}
