#ifndef PLATFORM_LINUX_QELTRACE_TRACESETTINGS_H
#define PLATFORM_LINUX_QELTRACE_TRACESETTINGS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qeltrace
{

/** What the environment asks for. */
class TraceSettings
{
public:
    /** Where messages go. */
    enum class Output
    {
        Syslog,
        StandardError,
        None,
        File
    };

    /** The settings of this process, read at the first call. */
    static const TraceSettings& instance();

    /**
     * The level set for a channel, if any.
     *
     * Of the patterns that match, a name comes before a pattern, and both before "*"; of several
     * the last.
     */
    std::optional<std::uint32_t> levelOf(const std::string& channel) const;
    Output output() const { return m_output; }
    /** File to append to, for Output::File. */
    const std::string& fileName() const { return m_fileName; }

private:
    /** The level of all channels whose names match the pattern. */
    struct LevelRule
    {
        std::string pattern;
        std::uint32_t level;
    };

    /** A part of QELTRACE_LEVEL that is not heeded. */
    struct RefusedItem
    {
        std::string item;
        const char* reason;
    };

    TraceSettings();
    void reportRefused() const;
    void readLevels(const std::string& levels);
    void readLevel(const std::string& item);
    void readOutput(const std::string& output);

    std::vector<LevelRule> m_levels;
    std::vector<RefusedItem> m_refused;
    Output m_output = Output::Syslog;
    std::string m_fileName;
};

/** Says once, on standard error, that a setting is not heeded. */
void reportBadSetting(const std::string& variable, const std::string& setting,
                      const std::string& reason);

} // namespace qeltrace

#endif
