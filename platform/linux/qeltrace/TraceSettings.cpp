#include "TraceSettings.h"
#include "StandardError.h"
#include "TraceText.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include <fnmatch.h>

namespace qeltrace
{

namespace
{

std::string environment(const char* variable)
{
    // Who starts a program with more rights than their own does not choose what it writes to.
    const char* text = ::secure_getenv(variable);
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

bool matches(const std::string& pattern, const std::string& channel)
{
    return ::fnmatch(pattern.c_str(), channel.c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0;
}

/** How exactly a pattern says which channels it means: one, some or all. */
int exactness(const std::string& pattern)
{
    if (pattern == "*") {
        return 0;
    }
    return pattern.find_first_of("*?[") == std::string::npos ? 2 : 1;
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
    // Nobody needs a lock, which a process forked at the wrong moment would find taken for ever.
    static std::atomic<const TraceSettings*> current{nullptr};
    const TraceSettings* settings = current.load();
    if (settings == nullptr) {
        std::unique_ptr<const TraceSettings> made(new TraceSettings);
        if (current.compare_exchange_strong(settings, made.get())) {
            settings = made.release();
            settings->reportRefused();
        }
    }
    return *settings;
}

TraceSettings::TraceSettings()
{
    readLevels(environment("QELTRACE_LEVEL"));
    readOutput(environment("QELTRACE_OUTPUT"));
}

std::optional<std::uint32_t> TraceSettings::levelOf(const std::string& channel) const
{
    const LevelRule* best = nullptr;
    for (const LevelRule& rule : m_levels) {
        const bool isBetter =
            best == nullptr || exactness(rule.pattern) >= exactness(best->pattern);
        if (isBetter && matches(rule.pattern, channel)) {
            best = &rule;
        }
    }
    return best == nullptr ? std::nullopt : std::optional(best->level);
}

void TraceSettings::readLevels(const std::string& levels)
{
    for (std::size_t begin = 0; begin < levels.size();) {
        const std::size_t end = std::min(levels.find(',', begin), levels.size());
        readLevel(levels.substr(begin, end - begin));
        begin = end + 1;
    }
}

void TraceSettings::readLevel(const std::string& item)
{
    const std::size_t equals = item.rfind('=');
    if (equals == std::string::npos || equals == 0 || item.find(' ') != std::string::npos) {
        m_refused.push_back({item, "not of the form CHANNEL=LEVEL"});
        return;
    }
    const std::optional<std::uint32_t> level = parseLevel(item.substr(equals + 1));
    if (!level) {
        m_refused.push_back({item, "the level is not one of 0 to 7"});
        return;
    }
    m_levels.push_back({item.substr(0, equals), *level});
}

void TraceSettings::reportRefused() const
{
    for (const RefusedItem& refused : m_refused) {
        reportBadSetting("QELTRACE_LEVEL", refused.item, refused.reason);
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
