#include "SettingsChange.h"
#include "ReplacedFile.h"
#include "SettingsFile.h"
#include "WriterLock.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace settings
{

namespace
{

/** The path without links; the path itself when there was nothing. */
std::string resolved(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           std::free);
    if (real) {
        return real.get();
    }
    struct stat entry
    {};
    // A file that is no link was made meanwhile.
    if (errno == ENOENT && ::lstat(path.c_str(), &entry) == 0 && S_ISLNK(entry.st_mode)) {
        throw std::runtime_error("a link to nowhere");
    }
    return path;
}

std::string edited(const std::string& before, const std::function<void(SettingsText&)>& edit)
{
    SettingsText text(before);
    edit(text);
    std::string after = text.text();
    if (after.size() > MaxFileSize) {
        throw std::runtime_error("no room: all settings take " + std::to_string(after.size()) +
                                 " of " + std::to_string(MaxFileSize) + " bytes");
    }
    return after;
}

} // namespace

void change(const std::string& path, const std::function<void(SettingsText&)>& edit,
            const Deadline& deadline)
{
    const ReplacedFile file(resolved(path));
    auto former = file.former();
    if (!former) {
        refuseFormerFormat(path);
    }
    const WriterLock lock(file.directory(), file.name(),
                          former ? std::optional(former->status) : std::nullopt, deadline);
    former = file.former(); // Others may have replaced it until now.
    file.replace(former, edited(former ? former->bytes : "", edit));
}

} // namespace settings
