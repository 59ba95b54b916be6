#ifndef FUZZ_MODELS_SETTINGSMODEL_H
#define FUZZ_MODELS_SETTINGSMODEL_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fuzz
{

/** The settings file by its description: read character by character, in one pass. */
struct SettingsModel
{
    struct Line
    {
        std::string raw;
        std::optional<std::string> key; /**< None for a comment or an empty line. */
        std::string value;
    };

    std::vector<Line> lines;
    std::string error; /**< Why it cannot be read, with the line; empty when it can. */

    static SettingsModel ofText(const std::string& text);
    std::map<std::string, std::string> entries() const;
    void clear(const std::string& key);
    /** Whether a key can be one. */
    static bool isKey(const std::string& key);
};

} // namespace fuzz

#endif
