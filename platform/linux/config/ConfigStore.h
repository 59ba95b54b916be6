#ifndef PLATFORM_LINUX_CONFIG_CONFIGSTORE_H
#define PLATFORM_LINUX_CONFIG_CONFIGSTORE_H

#include "SettingsFile.h"
#include "SettingsText.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace nxuconfig
{

/**
 * The board's key/value store, as this process sees it.
 *
 * One for each process, which all threads share. Where the board is, and whether its settings are
 * still those that were read, is looked up by each operation.
 */
class ConfigStore
{
public:
    /** The process's store; a forked process gets its own. Never destroyed. */
    static ConfigStore& instance();

    /** The value of a key, if it has one. @throws std::runtime_error naming the file */
    std::optional<std::string> get(const std::string& key);
    /** Sets a value durably. @throws std::runtime_error with nothing changed */
    void set(const std::string& key, const std::string& value);
    /** Removes a key. @throws std::runtime_error with nothing changed */
    void clear(const std::string& key);

private:
    ConfigStore() = default;
    std::optional<std::string> lookUp(const std::string& path, const std::string& key);
    void turnTo(const std::string& path);
    void change(const std::string& path, const std::function<void(settings::SettingsText&)>& edit);

    std::mutex m_reading; /**< Guards what follows. */
    std::string m_path;
    std::optional<settings::Contents> m_contents; /**< What was read last, from m_path. */
    std::mutex m_writing; /**< Held by the thread that changes the file; guards what follows. */
    std::chrono::steady_clock::time_point m_changed; /**< When this process last did so. */
};

} // namespace nxuconfig

#endif
