#include "LmdbFile.h"

#include <utility>

#include <fcntl.h>

namespace nxuconfig
{

namespace
{

/** How a new file's mode is asked for; files are made elsewhere. */
constexpr mdb_mode_t UnusedMode = 0;

void check(int code, const char* what)
{
    if (code != MDB_SUCCESS) {
        throw LmdbError(what, code);
    }
}

/** Keeps LMDB's descriptor from the programs that this process starts. */
void closeOnExec(MDB_env* environment)
{
    int fd = -1;
    check(mdb_env_get_fd(environment, &fd), "cannot tell the descriptor");
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
}

/** LMDB takes no other keys; they have no value and can get none. */
bool canBeKey(MDB_env* environment, const std::string& key)
{
    return !key.empty() &&
           key.size() <= static_cast<std::size_t>(mdb_env_get_maxkeysize(environment));
}

MDB_val viewOf(const std::string& text)
{
    // LMDB's interface takes no pointers to constants, but only reads through this one.
    return {text.size(), const_cast<char*>(text.data())}; // NOLINT(*-const-cast)
}

std::string textOf(const MDB_val& value)
{
    return {static_cast<const char*>(value.mv_data), value.mv_size};
}

/** A transaction on the file's only table; undone unless committed. */
class Transaction
{
public:
    Transaction(MDB_env* environment, unsigned int flags)
    {
        check(mdb_txn_begin(environment, nullptr, flags, &m_transaction), "cannot begin");
        const int code = mdb_dbi_open(m_transaction, nullptr, 0, &m_table);
        if (code != MDB_SUCCESS) {
            mdb_txn_abort(m_transaction);
            throw LmdbError("cannot open the table", code);
        }
    }
    ~Transaction()
    {
        if (m_transaction != nullptr) {
            mdb_txn_abort(m_transaction);
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    std::optional<std::string> get(const std::string& key) const
    {
        MDB_val name = viewOf(key);
        MDB_val value{};
        const int code = mdb_get(m_transaction, m_table, &name, &value);
        if (code == MDB_NOTFOUND) {
            return std::nullopt;
        }
        check(code, "cannot read");
        return textOf(value);
    }

    std::map<std::string, std::string> all() const
    {
        MDB_cursor* opened = nullptr;
        check(mdb_cursor_open(m_transaction, m_table, &opened), "cannot read");
        const std::unique_ptr<MDB_cursor, decltype(&mdb_cursor_close)> cursor(opened,
                                                                              mdb_cursor_close);
        std::map<std::string, std::string> entries;
        MDB_val key{};
        MDB_val value{};
        int code = mdb_cursor_get(opened, &key, &value, MDB_FIRST);
        while (code == MDB_SUCCESS) {
            entries.emplace(textOf(key), textOf(value));
            code = mdb_cursor_get(opened, &key, &value, MDB_NEXT);
        }
        if (code != MDB_NOTFOUND) {
            check(code, "cannot read");
        }
        return entries;
    }

    void put(const std::string& key, const std::string& value)
    {
        MDB_val name = viewOf(key);
        MDB_val contents = viewOf(value);
        check(mdb_put(m_transaction, m_table, &name, &contents, 0), "cannot write");
    }

    void remove(const std::string& key)
    {
        MDB_val name = viewOf(key);
        const int code = mdb_del(m_transaction, m_table, &name, nullptr);
        if (code != MDB_NOTFOUND) {
            check(code, "cannot remove");
        }
    }

    void commit() { check(mdb_txn_commit(std::exchange(m_transaction, nullptr)), "cannot commit"); }

private:
    MDB_txn* m_transaction = nullptr;
    MDB_dbi m_table = 0;
};

} // namespace

LmdbError::LmdbError(const char* what, int code)
    : std::runtime_error(std::string(what) + ": " + mdb_strerror(code))
{}

LmdbFile::LmdbFile(int fd, Access access)
{
    MDB_env* environment = nullptr;
    check(mdb_env_create(&environment), "cannot prepare");
    m_environment.reset(environment);
    check(mdb_env_set_mapsize(environment, Size), "cannot set the size");
    // LMDB opens by name, and more than once; this name is that very file's, whatever its
    // directory holds by now.
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    const unsigned int flags =
        MDB_NOSUBDIR | MDB_NOLOCK | (access == Access::Read ? MDB_RDONLY : 0U);
    check(mdb_env_open(environment, path.c_str(), flags, UnusedMode), "cannot open");
    closeOnExec(environment);
}

std::optional<std::string> LmdbFile::read(const std::string& key) const
{
    if (!canBeKey(m_environment.get(), key)) {
        return std::nullopt;
    }
    return Transaction(m_environment.get(), MDB_RDONLY).get(key);
}

std::map<std::string, std::string> LmdbFile::entries() const
{
    return Transaction(m_environment.get(), MDB_RDONLY).all();
}

void LmdbFile::write(const std::string& key, const std::optional<std::string>& value)
{
    Transaction transaction(m_environment.get(), 0);
    if (value) {
        transaction.put(key, *value);
    } else {
        transaction.remove(key);
    }
    transaction.commit();
}

} // namespace nxuconfig
