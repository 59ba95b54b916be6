#ifndef PLATFORM_LINUX_CONFIG_CONFIGSTORE_H
#define PLATFORM_LINUX_CONFIG_CONFIGSTORE_H

#include "StoreFile.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <sys/types.h>

namespace nxuconfig
{

/**
 * The board's key/value store, as this process sees it.
 *
 * One for each process, which all threads share. Where the board is, and whether its store is
 * still the same file, is looked up by each operation.
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
    using Work = std::function<void(LmdbFile&)>;

    ConfigStore();
    void giveUp();
    bool withDatabase(const std::string& path, LmdbFile::Access needed, const Work& work);
    bool prepare(const std::string& path, LmdbFile::Access needed);
    void guarded(const char* purpose, const std::function<void(const std::string& path)>& work);

    const pid_t m_process;
    std::mutex m_mutex;
    std::unique_ptr<StoreFile> m_file; /**< The store as last used; guarded by m_mutex. */
};

} // namespace nxuconfig

#endif
