#include "evidence/SharedNames.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string>

namespace
{

constexpr const char* Removed = " (deleted)";

/** What belongs to one board: the directories by which its shared memory is listed. */
class Board
{
public:
    Board(const Places& places, const SharedNames& names, const Dtcm& dtcm)
        : m_dtcm(dtcm.identity()),
          m_sharedMemory(identityOf(places.sharedMemory)), m_directories{places.sharedMemory}
    {
        for (const SharedName* const name : {&names.semaphore, &names.syncArea}) {
            if (name->file) {
                m_directories.insert(name->file->listedDirectory());
            }
        }
    }

    /**
     * Whether a process that has mapped this is one of this board's: on other boards the same names
     * are used. Without a warm area to know it by, it is the file system.
     */
    bool has(const Process& process, const Mapping& mapping) const
    {
        return m_dtcm ? process.maps(*m_dtcm) : mapping.file.device == m_sharedMemory.device;
    }

    /** Whether the mapped file had that name in this board's shared memory, and has it no more. */
    bool hadName(const Mapping& mapping, const std::string& name) const
    {
        return std::any_of(m_directories.begin(), m_directories.end(),
                           [&](const std::string& directory) {
                               return mapping.path == directory + '/' + name + Removed;
                           });
    }

    /** The same for a semaphore's maker, in which it is listed by the name that it was made by. */
    bool hadMakersName(const Mapping& mapping) const
    {
        constexpr std::size_t madeUp = 6;
        constexpr const char* start = "/sem.";
        return std::any_of(
            m_directories.begin(), m_directories.end(), [&](const std::string& directory) {
                const std::string begin = directory + start;
                return mapping.path.rfind(begin, 0) == 0 &&
                       mapping.path.size() == begin.size() + madeUp + std::string(Removed).size();
            });
    }

private:
    const std::optional<FileIdentity> m_dtcm;
    const FileIdentity m_sharedMemory;
    std::set<std::string> m_directories;
};

bool isCurrent(const SharedName& name, const Mapping& mapping)
{
    return name.file && mapping.file == name.file->identity();
}

Users usersOf(const ProcessTable& processes, const Board& board, const SharedName& name,
              const std::function<bool(const Mapping&)>& hadName)
{
    Users users;
    for (const Process& process : processes.all()) {
        const bool uses =
            std::any_of(process.shared.begin(), process.shared.end(), [&](const Mapping& mapping) {
                return !isCurrent(name, mapping) && hadName(mapping) && board.has(process, mapping);
            });
        if (uses) {
            users.push_back(&process);
        }
    }
    return users;
}

void findUsers(const ProcessTable& processes, SharedName& name)
{
    if (name.file) {
        name.users = processes.mapping(name.file->identity());
    }
}

} // namespace

SharedNames lookAtSharedNames(const Places& places, const ProcessTable& processes, const Dtcm& dtcm)
{
    SharedNames names;
    names.semaphore.file = SharedFile::look(places.sharedMemory + '/' + sharedname::Semaphore);
    names.syncArea.file = SharedFile::look(places.sharedMemory + '/' + sharedname::SyncArea);
    findUsers(processes, names.semaphore);
    findUsers(processes, names.syncArea);
    const Board board(places, names, dtcm);
    names.semaphore.formerUsers =
        usersOf(processes, board, names.semaphore, [&](const Mapping& mapping) {
            return board.hadName(mapping, sharedname::Semaphore) || board.hadMakersName(mapping);
        });
    names.syncArea.formerUsers =
        usersOf(processes, board, names.syncArea, [&](const Mapping& mapping) {
            return board.hadName(mapping, sharedname::SyncArea);
        });
    return names;
}
