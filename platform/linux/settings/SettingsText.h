#ifndef PLATFORM_LINUX_SETTINGS_SETTINGSTEXT_H
#define PLATFORM_LINUX_SETTINGS_SETTINGSTEXT_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace settings
{

/** Keys with their values. */
using Entries = std::map<std::string, std::string>;

/**
 * The text of a settings file: lines of the form key=value.
 *
 * Blank lines and those that begin with # say nothing, and stay where they are. Blanks around a key
 * or a value are no part of it. "\\" is a backslash, "\n" a newline, "\xHH" any byte. Of several
 * lines of one key the last holds.
 */
class SettingsText
{
public:
    static constexpr std::size_t MaxKeySize = 511;

    SettingsText() = default;
    /** @throws std::runtime_error with the number of a line that has another form, and why */
    explicit SettingsText(const std::string& text);

    Entries entries() const;
    /** Gives a key its value, in its own line or in a new one. @throws std::runtime_error */
    void set(const std::string& key, const std::string& value);
    /** Removes all lines of a key. */
    void clear(const std::string& key);
    std::string text() const;

private:
    struct Line
    {
        std::string text; /**< Without the newline. */
        std::optional<std::string> key;
        std::string value;
    };
    static Line parse(const std::string& text);

    std::vector<Line> m_lines;
};

} // namespace settings

#endif
