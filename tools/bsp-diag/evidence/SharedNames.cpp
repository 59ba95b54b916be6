#include "evidence/SharedNames.h"

#include "SharedMemory.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <set>
#include <string>
#include <thread>

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

SharedName lookAt(const Places& places, const ProcessTable& processes, const char* entry)
{
    SharedName name;
    name.file = SharedFile::look(places.sharedMemory + '/' + entry);
    if (name.file) {
        name.users = processes.mapping(name.file->identity());
    }
    return name;
}

bool hasNoUser(const SharedName& name, const ProcessTable& processes)
{
    return name.file && name.file->isRegular() && processes.isComplete() &&
           processes.mapping(name.file->identity()).empty();
}

/**
 * Whether nobody uses these names, seen twice: a program may have begun to use them since the
 * processes were looked at, or have ended and be about to remove them.
 */
void findUnused(const Places& places, const ProcessTable& processes,
                std::chrono::milliseconds moment, std::initializer_list<SharedName*> names)
{
    if (std::none_of(names.begin(), names.end(),
                     [&](const SharedName* name) { return hasNoUser(*name, processes); }))
    {
        return;
    }
    std::this_thread::sleep_for(moment);
    const ProcessTable later(places);
    for (SharedName* const name : names) {
        const auto now = name->file ? SharedFile::look(name->file->path()) : std::nullopt;
        name->isUnused = hasNoUser(*name, processes) && hasNoUser(*name, later) && now &&
                         now->identity() == name->file->identity();
    }
}

} // namespace

SharedNames lookAtSharedNames(const Places& places, const ProcessTable& processes, const Dtcm& dtcm,
                              std::chrono::milliseconds moment)
{
    SharedNames names{lookAt(places, processes, sharedname::Semaphore),
                      lookAt(places, processes, sharedname::SyncArea)};
    findUnused(places, processes, moment, {&names.semaphore, &names.syncArea});
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
