/**
 * @file
 * @brief The living processes and what of the shared memory they have mapped.
 */
#ifndef TOOLS_DIAG_EVIDENCE_PROCESSTABLE_H
#define TOOLS_DIAG_EVIDENCE_PROCESSTABLE_H

#include "evidence/Places.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

/** What file it is, in the way in which the kernel lists mappings. */
struct FileIdentity
{
    std::string device;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity& other) const
    {
        return device == other.device && inode == other.inode;
    }
};

/** A part of a file that a process has mapped and shares with others. */
struct Mapping
{
    std::uintptr_t begin = 0;
    FileIdentity file;
    std::string path; /**< The kernel's: ends in " (deleted)" when the name is gone. */
};

struct Process
{
    pid_t id = 0;
    std::string name;
    std::string started;
    bool isSeen = false; /**< Whether this user may see its mappings. */
    std::vector<Mapping> shared;

    bool maps(const FileIdentity& file) const;
    /** As in "bsp (4711, since 2026-11-21 17:40:02 UTC)". */
    std::string text() const;
};

using Users = std::vector<const Process*>;

/** "a (1, since ...), b (2, since ...)", or "no process". */
std::string textOf(const Users& users);

class ProcessTable
{
public:
    explicit ProcessTable(const Places& places);
    ProcessTable(const ProcessTable&) = delete;
    ProcessTable& operator=(const ProcessTable&) = delete;

    /** Whether there is a list of processes at all. */
    bool isThere() const { return m_isThere; }
    /** The listed processes whose mappings this user may not see. */
    unsigned int numberOfUnseen() const { return m_unseen; }
    /** Whether the list leaves out the processes of other users. */
    bool hidesOthers() const { return m_hidesOthers; }
    /** Whether what nobody of the list uses is used by nobody. */
    bool isComplete() const { return m_isThere && m_unseen == 0 && !m_hidesOthers; }

    const std::vector<Process>& all() const { return m_processes; }
    Users mapping(const FileIdentity& file) const;
    /** The process of a thread that is listed, seen or not. */
    std::optional<Process> ofThread(pid_t thread) const;
    /** Whether there is no such thread, or only its number, which nobody has asked for yet. */
    bool hasEnded(pid_t thread) const;

private:
    void add(pid_t number);
    std::string directoryOf(pid_t process) const;
    std::optional<Process> look(pid_t process) const;

    const std::string m_directory;
    const std::int64_t m_bootTime;
    bool m_isThere = false;
    bool m_hidesOthers = false;
    unsigned int m_unseen = 0;
    std::vector<Process> m_processes;
};

/** The shared mappings that a process's file "maps" lists; nothing when it may not be read. */
std::optional<std::vector<Mapping>> sharedMappings(const std::string& maps);

/** A time of the system's clock: "2026-11-21 17:40:02 UTC". */
std::string timeText(std::int64_t secondsSinceEpoch);

#endif
