#include "evidence/Store.h"

#include "Text.h"
#include "evidence/BoardFiles.h"

#include <cerrno>

#include <unistd.h>

std::optional<std::string> whyNotWritable()
{
    const std::optional<std::string> file = settingsFile();
    if (!file) {
        return std::nullopt;
    }
    // The file is replaced by a new one, so its directory counts as well.
    const std::string directory = file->substr(0, file->rfind('/'));
    for (const std::string& path : {*file, directory}) {
        const bool isMissingFile = path == *file && ::access(path.c_str(), F_OK) != 0;
        if (!isMissingFile && ::access(path.c_str(), W_OK) != 0) {
            const int error = errno;
            return printable(path) + ": " + errorText(error);
        }
    }
    return "";
}
