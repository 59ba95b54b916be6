/**
 * @file
 * @brief What the processes of a board share: the warm area, and two names with what is in them.
 */
#ifndef TESTS_FAULTS_SHAREDSTATE_H
#define TESTS_FAULTS_SHAREDSTATE_H

#include <cstddef>
#include <optional>
#include <string>

namespace faults
{

/** All of it, as it was at one time. */
struct SharedState
{
    std::string area;
    std::optional<std::string> semaphore; /**< The bytes of the named semaphore, if it is there. */
    std::optional<std::string> mutexes;   /**< Those of the block-synchronisation area. */

    bool operator==(const SharedState& other) const
    {
        return area == other.area && semaphore == other.semaphore && mutexes == other.mutexes;
    }
};

constexpr const char* SemaphoreFile = "/dev/shm/sem.DtcmDbSharedSem";
constexpr const char* MutexesFile = "/dev/shm/DtcmSync";

/** A file that is mapped while it is there. */
class WatchedFile
{
public:
    explicit WatchedFile(std::string path) : m_path(std::move(path)) {}
    ~WatchedFile() { unmap(); }
    WatchedFile(const WatchedFile&) = delete;
    WatchedFile& operator=(const WatchedFile&) = delete;

    /** Finds out anew whether it is there. */
    void open();
    bool holds(const std::optional<std::string>& bytes) const;
    std::optional<std::string> bytes() const;

private:
    void unmap();

    const std::string m_path;
    bool m_isThere = false;
    const char* m_bytes = nullptr;
    std::size_t m_size = 0;
};

/** Looks at it again and again, quickly. */
class SharedStateWatch
{
public:
    explicit SharedStateWatch(const std::string& area) : m_area(area) {}

    /** Whether it has changed since the last call; names come and go in system calls only. */
    bool hasChanged(bool isAfterSystemCall);
    const SharedState& state() const { return m_state; }

private:
    WatchedFile m_area;
    WatchedFile m_semaphore{SemaphoreFile};
    WatchedFile m_mutexes{MutexesFile};
    SharedState m_state;
};

} // namespace faults

#endif
