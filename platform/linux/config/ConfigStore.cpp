#include "ConfigStore.h"
#include "BoardDirectory.h"
#include "ConfigTrace.h"
#include "Entries.h"
#include "GtMessage.h"
#include "SettingsChange.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include <pthread.h>

namespace nxuconfig
{

namespace
{

using settings::SettingsText;

/** How long a change waits for those of others. */
constexpr std::chrono::seconds Patience(10);

std::atomic<ConfigStore*> current{nullptr};

// The mutexes of a forked process may be those of threads that it has not got.
[[maybe_unused]] const int forkHandler =
    ::pthread_atfork(nullptr, nullptr, [] { current = nullptr; });

/** Does the work on the store's file; its failures name the file. */
template <typename Work> auto guarded(const char* purpose, const Work& work)
{
    const std::string path = boarddirectory::entryPath(boarddirectory::entry::Settings);
    try {
        return work(path);
    } catch (const std::exception& error) {
        throw std::runtime_error(std::string("cannot ") + purpose + " the configuration store " +
                                 path + ": " + error.what());
    }
}

} // namespace

ConfigStore& ConfigStore::instance()
{
    ConfigStore* store = current.load();
    if (store == nullptr) {
        std::unique_ptr<ConfigStore> made(new ConfigStore);
        if (current.compare_exchange_strong(store, made.get())) {
            store = made.release();
        }
    }
    return *store;
}

std::optional<std::string> ConfigStore::get(const std::string& key)
{
    return guarded("read", [&](const std::string& path) { return lookUp(path, key); });
}

void ConfigStore::set(const std::string& key, const std::string& value)
{
    guarded("write", [&](const std::string& path) {
        change(path, [&](SettingsText& text) { text.set(key, value); });
    });
}

void ConfigStore::clear(const std::string& key)
{
    guarded("write", [&](const std::string& path) {
        if (lookUp(path, key)) {
            change(path, [&](SettingsText& text) { text.clear(key); });
        }
    });
}

/** Reads the file unless it is the one that was read last. */
std::optional<std::string> ConfigStore::lookUp(const std::string& path, const std::string& key)
{
    const std::lock_guard<std::mutex> guard(m_reading);
    turnTo(path);
    const bool isKnown =
        m_contents && m_contents->isSettled && settings::stateOf(path) == m_contents->state;
    if (!isKnown) {
        m_contents.reset();
        m_contents = settings::read(path);
    }
    if (!m_contents) {
        return std::nullopt;
    }
    const auto found = m_contents->entries.find(key);
    return found == m_contents->entries.end() ? std::nullopt : std::optional(found->second);
}

/** Forgets what was read from another file; m_reading is held. */
void ConfigStore::turnTo(const std::string& path)
{
    if (path != m_path) {
        TRACE_PRINTF(configTrace, trace::Information, "the settings are those of %s", path.c_str());
        m_path = path;
        m_contents.reset();
    }
}

/** Changes the file as the process's only thread. */
void ConfigStore::change(const std::string& path, const std::function<void(SettingsText&)>& edit)
{
    {
        const std::lock_guard<std::mutex> guard(m_reading);
        turnTo(path);
    }
    const settings::Deadline deadline(Patience);
    std::unique_lock<std::mutex> guard(m_writing, std::try_to_lock);
    while (!guard.owns_lock() && deadline.wait()) {
        guard.try_lock();
    }
    if (!guard.owns_lock()) {
        throw std::runtime_error("another thread is writing");
    }
    // Who changes one setting after the other lets others in between.
    std::this_thread::sleep_until(m_changed + std::chrono::milliseconds(2));
    settings::change(path, edit, deadline);
    m_changed = std::chrono::steady_clock::now();
}

} // namespace nxuconfig
