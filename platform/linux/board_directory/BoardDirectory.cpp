#include "BoardDirectory.h"

#include <cstdlib>
#include <vector>

#include <unistd.h>

namespace boarddirectory
{

namespace
{

constexpr const char* SystemPlace = "/var/lib/bsp/board";

/** The directories of users, best first. */
constexpr struct
{
    const char* variable;
    const char* below; /**< Directory below the variable's. */
} UsersPlaces[] = {
    {"XDG_STATE_HOME", "/bsp/board"},
    {"HOME", "/.local/state/bsp/board"},
};

/** Empty for a program with raised rights: its caller does not choose what it works on. */
std::string environment(const char* variable)
{
    // Programs that change their environment while they ask for their board are on their own.
    const char* const text = ::secure_getenv(variable); // NOLINT(concurrency-mt-unsafe)
    return text == nullptr ? "" : text;
}

bool isDirectory(const std::string& path)
{
    return ::access((path + '/').c_str(), F_OK) == 0;
}

} // namespace

std::string path()
{
    std::string chosen = environment(Variable);
    if (!chosen.empty()) {
        return chosen;
    }
    std::vector<std::string> places;
    for (const auto& place : UsersPlaces) {
        const std::string base = environment(place.variable);
        if (!base.empty()) {
            places.push_back(base + place.below);
        }
    }
    places.emplace_back(SystemPlace);
    for (const std::string& place : places) {
        if (isDirectory(place)) {
            return place;
        }
    }
    return ::geteuid() == 0 ? SystemPlace : places.front();
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
