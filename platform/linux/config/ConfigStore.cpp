#include "ConfigStore.h"
#include "BoardDirectory.h"
#include "FileLock.h"
#include "StoreCreation.h"

#include <atomic>

#include <unistd.h>

namespace nxuconfig
{

ConfigStore& ConfigStore::instance()
{
    static std::atomic<ConfigStore*> current{nullptr};
    ConfigStore* store = current.load();
    while (store == nullptr || store->m_process != ::getpid()) {
        auto* const own = new ConfigStore;
        if (current.compare_exchange_strong(store, own)) {
            if (store != nullptr) {
                store->giveUp();
            }
            return *own;
        }
        delete own;
    }
    return *store;
}

ConfigStore::ConfigStore() : m_process(::getpid()) {}

/** Closes what a fork copied, unless another thread was in the middle of using it. */
void ConfigStore::giveUp()
{
    const std::unique_lock<std::mutex> lock(m_mutex, std::try_to_lock);
    if (lock.owns_lock()) {
        m_file.reset();
    }
}

std::optional<std::string> ConfigStore::get(const std::string& key)
{
    std::optional<std::string> value;
    guarded("read", [&](const std::string& path) {
        withDatabase(path, LmdbFile::Access::Read,
                     [&](LmdbFile& database) { value = database.read(key); });
    });
    return value;
}

void ConfigStore::set(const std::string& key, const std::string& value)
{
    guarded("write", [&](const std::string& path) {
        const Work write = [&](LmdbFile& database) { database.write(key, value); };
        while (!withDatabase(path, LmdbFile::Access::ReadWrite, write) &&
               !createStore(path, key, value)) {
        }
    });
}

void ConfigStore::clear(const std::string& key)
{
    guarded("write", [&](const std::string& path) {
        bool present = false;
        withDatabase(path, LmdbFile::Access::Read,
                     [&](LmdbFile& database) { present = database.read(key).has_value(); });
        if (present) {
            withDatabase(path, LmdbFile::Access::ReadWrite,
                         [&](LmdbFile& database) { database.write(key, std::nullopt); });
        }
    });
}

/** Does the work on the locked store; false when there is none. */
bool ConfigStore::withDatabase(const std::string& path, LmdbFile::Access needed, const Work& work)
{
    while (prepare(path, needed)) {
        const FileLock lock(m_file->fd());
        if (leadsTo(path, m_file->fd())) {
            work(m_file->database());
            return true;
        }
    }
    return false;
}

/** Has the store that is now at the path open; false when there is none. */
bool ConfigStore::prepare(const std::string& path, LmdbFile::Access needed)
{
    const bool writable = needed == LmdbFile::Access::ReadWrite;
    if (m_file && (!leadsTo(path, m_file->fd()) || (writable && !m_file->isWritable()))) {
        m_file.reset();
    }
    if (!m_file) {
        m_file = StoreFile::open(path, needed);
    }
    return m_file != nullptr;
}

/** Does the work as the process's only thread; its failures name the file. */
void ConfigStore::guarded(const char* purpose,
                          const std::function<void(const std::string& path)>& work)
{
    const std::string path = boarddirectory::entryPath("config.mdb");
    const std::lock_guard<std::mutex> guard(m_mutex);
    try {
        work(path);
    } catch (const std::exception& error) {
        // After some failures a database refuses all further work.
        m_file.reset();
        throw std::runtime_error(std::string("cannot ") + purpose + " the configuration store " +
                                 path + ": " + error.what());
    }
}

} // namespace nxuconfig
