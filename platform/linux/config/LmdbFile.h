#ifndef PLATFORM_LINUX_CONFIG_LMDBFILE_H
#define PLATFORM_LINUX_CONFIG_LMDBFILE_H

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include <lmdb.h>
#include <sys/types.h>

namespace nxuconfig
{

/** What LMDB refuses. */
class LmdbError : public std::runtime_error
{
public:
    LmdbError(const char* what, int code);
};

/**
 * An LMDB file open in this process.
 *
 * LMDB's own locks are off: they need a second file that every reader can write, and process
 * numbers that all users agree on. Whoever calls read or write holds the file's FileLock, and no
 * two threads call at once.
 */
class LmdbFile
{
public:
    /** Size of every store; of a new file most is a hole that takes no room. */
    static constexpr std::size_t Size = std::size_t{1024} * 1024;

    enum class Access
    {
        Read,
        ReadWrite
    };

    /** Opens the file behind a descriptor; an empty file becomes a store. @throws LmdbError */
    LmdbFile(int fd, Access access);

    /** The value of a key, if it has one. @throws LmdbError */
    std::optional<std::string> read(const std::string& key) const;

    /** All keys with their values. @throws LmdbError */
    std::map<std::string, std::string> entries() const;

    /**
     * Sets a key's value, or removes the key; durable on return.
     * @throws LmdbError with nothing changed; the file must then be opened anew
     */
    void write(const std::string& key, const std::optional<std::string>& value);

private:
    struct Close
    {
        void operator()(MDB_env* environment) const { mdb_env_close(environment); }
    };
    std::unique_ptr<MDB_env, Close> m_environment;
};

} // namespace nxuconfig

#endif
