#include "BoardDirectory.h"

#include <cstdlib>

namespace boarddirectory
{

namespace
{

struct Place
{
    const char* variable;
    const char* below; /**< Directory below the variable's. */
};

/** Where to look, best first. */
constexpr Place Places[] = {
    {"BSP_BOARD_DIR", ""},
    {"XDG_STATE_HOME", "/bsp/board"},
    {"HOME", "/.local/state/bsp/board"},
};

constexpr const char* SystemPlace = "/var/lib/bsp/board";

} // namespace

std::string path()
{
    for (const Place& place : Places) {
        // Programs that change their environment while they ask for their board are on their own.
        const char* base = std::getenv(place.variable); // NOLINT(concurrency-mt-unsafe)
        if (base != nullptr && *base != '\0') {
            return std::string(base) + place.below;
        }
    }
    return SystemPlace;
}

std::string entryPath(const std::string& name)
{
    return path() + '/' + name;
}

bool isEntryName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace boarddirectory
