#ifndef TESTS_PLATFORM_BOARD_H
#define TESTS_PLATFORM_BOARD_H

#include "Files.h"

#include <cstdlib>
#include <set>
#include <string>

#include <sys/types.h>

namespace testsupport
{

/**
 * A board directory of the test case's own, which the stand-ins of this process serve. It is in
 * memory, because who stores a setting waits for the disk, and others wait for him, but not for
 * ever.
 */
class Board : public TemporaryDirectory
{
public:
    Board() : TemporaryDirectory("/dev/shm") { ::setenv("BSP_BOARD_DIR", path().c_str(), 1); }

    /** Fills an entry. */
    void write(const std::string& name, const std::string& contents) const
    {
        writeFile(file(name), contents);
    }
    bool has(const std::string& name) const { return std::filesystem::exists(file(name)); }
    mode_t modeOf(const std::string& name) const
    {
        return static_cast<mode_t>(std::filesystem::status(file(name)).permissions());
    }
    /** The names of its entries. */
    std::set<std::string> entries() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
    bool isEmpty() const { return std::filesystem::is_empty(path()); }
};

} // namespace testsupport

#endif
