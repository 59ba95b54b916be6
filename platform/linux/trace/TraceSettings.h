#ifndef PLATFORM_LINUX_TRACE_TRACESETTINGS_H
#define PLATFORM_LINUX_TRACE_TRACESETTINGS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

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

    /** The level set for a channel, if any. */
    std::optional<std::uint32_t> levelOf(const std::string& channel) const;
    Output output() const { return m_output; }
    /** File to append to, for Output::File. */
    const std::string& fileName() const { return m_fileName; }

private:
    TraceSettings();
    void readLevels(const std::string& levels);
    void readOutput(const std::string& output);

    std::map<std::string, std::uint32_t> m_levels;
    Output m_output = Output::Syslog;
    std::string m_fileName;
};

/** Says once, on standard error, that a setting is not heeded. */
void reportBadSetting(const std::string& variable, const std::string& setting,
                      const std::string& reason);

} // namespace qeltrace

#endif
