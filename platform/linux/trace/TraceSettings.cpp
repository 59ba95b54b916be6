#include "TraceSettings.h"
#include "StandardError.h"
#include "TraceText.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace qeltrace
{

namespace
{

const char* const EveryChannel = "*";

std::string environment(const char* variable)
{
    const char* text = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): read once, at start
    return text == nullptr ? "" : text;
}

/** The file's name from the root, since a program may change its directory. */
std::string absolute(const std::string& fileName)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(fileName, error);
    return error ? fileName : path.string();
}

/** A level is one digit from 0, which is silent, to 7. */
std::optional<std::uint32_t> parseLevel(const std::string& text)
{
    if (text.size() != 1 || text[0] < '0' || text[0] > '7') {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(text[0] - '0');
}

} // namespace

void reportBadSetting(const std::string& variable, const std::string& setting,
                      const std::string& reason)
{
    const std::string line =
        onOneLine("qeltrace: ignoring '" + setting + "' in " + variable + ": " + reason);
    // Nobody is left to tell when it is lost.
    static_cast<void>(writeToStandardError(line + '\n'));
}

const TraceSettings& TraceSettings::instance()
{
    // Never destroyed: static objects of other modules trace while they are destroyed.
    static const TraceSettings& settings = *new TraceSettings;
    return settings;
}

TraceSettings::TraceSettings()
{
    readLevels(environment("QELTRACE_LEVEL"));
    readOutput(environment("QELTRACE_OUTPUT"));
}

std::optional<std::uint32_t> TraceSettings::levelOf(const std::string& channel) const
{
    for (const std::string& name : {channel, std::string(EveryChannel)}) {
        const auto found = m_levels.find(name);
        if (found != m_levels.end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void TraceSettings::readLevels(const std::string& levels)
{
    std::istringstream items(levels);
    for (std::string item; std::getline(items, item, ',');) {
        const std::size_t equals = item.rfind('=');
        if (equals == std::string::npos || equals == 0 || item.find(' ') != std::string::npos) {
            reportBadSetting("QELTRACE_LEVEL", item, "not of the form CHANNEL=LEVEL");
            continue;
        }
        const std::optional<std::uint32_t> level = parseLevel(item.substr(equals + 1));
        if (!level) {
            reportBadSetting("QELTRACE_LEVEL", item, "the level is not one of 0 to 7");
            continue;
        }
        m_levels[item.substr(0, equals)] = *level;
    }
}

void TraceSettings::readOutput(const std::string& output)
{
    if (output.empty() || output == "syslog") {
        m_output = Output::Syslog;
    } else if (output == "stderr") {
        m_output = Output::StandardError;
    } else if (output == "none") {
        m_output = Output::None;
    } else {
        m_output = Output::File;
        m_fileName = absolute(output);
    }
}

} // namespace qeltrace
