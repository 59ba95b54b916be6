#include "commands/Commands.h"

#include "SharedMemory.h"
#include "Text.h"
#include "evidence/KernelImage.h"
#include "evidence/SharedNames.h"

#include <cerrno>
#include <chrono>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace
{

struct RepairArguments
{
    std::vector<std::string> names;
    bool isMeant = false;
    bool ignoresUnseen = false;
};

/** What can be repaired by removing it, by the name that people know it by. */
struct Thing
{
    const char* name;
    const char* file;
};

constexpr Thing things[] = {
    {sharedname::lastPartOf(os::bsp::dtcm::SemaphoreName), sharedname::Semaphore},
    {sharedname::SyncArea, sharedname::SyncArea},
    {sharedname::KernelImage, sharedname::KernelImage},
};

const Thing& thingOf(const std::string& name)
{
    std::string known;
    for (const Thing& thing : things) {
        if (name == thing.name || name == std::string("/") + thing.name) {
            return thing;
        }
        known += (known.empty() ? "" : ", ") + std::string(thing.name);
    }
    throw UsageError("there is nothing to repair of the name '" + name + "'; it can be " + known);
}

class Repair
{
public:
    explicit Repair(const RepairArguments& options) : m_options(options) {}

    /** Says what it does, or why not; false when it does not. */
    bool remove(const Thing& thing) const
    {
        const std::string path = m_places.sharedMemory + '/' + thing.file;
        const std::optional<SharedFile> file = SharedFile::look(path);
        if (!file) {
            std::cout << thing.name << ": there is no " << path << '\n';
            return true;
        }
        const std::string why = objection(thing, *file);
        if (!why.empty()) {
            std::cout << thing.name << ": kept, " << why << '\n';
            return false;
        }
        if (!m_options.isMeant) {
            std::cout << thing.name << ": would remove " << path << "; --yes does it\n";
            return true;
        }
        const std::optional<SharedFile> now = SharedFile::look(path);
        if (!now || !(now->identity() == file->identity())) {
            std::cout << thing.name << ": kept, as it has just been made anew\n";
            return false;
        }
        if (::unlink(path.c_str()) != 0) {
            std::cout << thing.name << ": kept, cannot remove " << path << ": " << errorText(errno)
                      << '\n';
            return false;
        }
        std::cout << thing.name << ": removed " << path << '\n';
        return true;
    }

private:
    /** Why it is not safe to remove this; empty when it is. */
    std::string objection(const Thing& thing, const SharedFile& file) const
    {
        // Looked at after the thing, so that it is seen who has begun to use it meanwhile.
        const ProcessTable processes(m_places);
        const std::string users = thing.file == std::string(sharedname::KernelImage)
                                      ? usersOfImage(processes, file)
                                      : usersOfStore(processes);
        if (!users.empty()) {
            return "used by " + users;
        }
        if (!processes.isThere()) {
            return "as it cannot be seen who uses it";
        }
        if (processes.isComplete() || m_options.ignoresUnseen) {
            return "";
        }
        return (processes.hidesOthers() ? "as the processes of other users are hidden here"
                                        : "as " + std::to_string(processes.numberOfUnseen()) +
                                              " processes of other users cannot be looked at") +
               "; root may, or --ignore-unseen";
    }

    std::string usersOfImage(const ProcessTable& processes, const SharedFile& file) const
    {
        const KernelImageEvidence image = lookAtKernelImage(m_places, processes);
        const Users mapping = processes.mapping(file.identity());
        return image.holdersText.empty() && !mapping.empty() ? textOf(mapping) : image.holdersText;
    }

    /** Who uses one of the two names relies on the other. */
    std::string usersOfStore(const ProcessTable& processes) const
    {
        const SharedNames names =
            lookAtSharedNames(m_places, processes, m_dtcm, std::chrono::milliseconds(0));
        std::set<const Process*> all(names.semaphore.users.begin(), names.semaphore.users.end());
        all.insert(names.syncArea.users.begin(), names.syncArea.users.end());
        return all.empty() ? "" : textOf(Users(all.begin(), all.end()));
    }

    const RepairArguments& m_options;
    const Places m_places;
    const Dtcm m_dtcm;
};

int repair(const RepairArguments& options)
{
    std::vector<const Thing*> wanted;
    for (const std::string& name : options.names) {
        wanted.push_back(&thingOf(name));
    }
    const Repair repair(options);
    int status = Done;
    for (const Thing* const thing : wanted) {
        status = repair.remove(*thing) ? status : Found;
    }
    return status;
}

} // namespace

void addRepairCommand(CLI::App& app, int& status)
{
    CLI::App* const command = app.add_subcommand(
        "repair", "Remove what was left behind, where no living process uses it");
    const auto options = std::make_shared<RepairArguments>();
    command
        ->add_option("NAME", options->names,
                     std::string(things[0].name) + ", " + things[1].name + " or " + things[2].name +
                         "; may be repeated")
        ->required();
    command->add_flag("--yes", options->isMeant, "Do it; without, only say what would be done");
    command->add_flag("--ignore-unseen", options->ignoresUnseen,
                      "Take it that processes of other users, which cannot be seen, do not use it");
    command->callback([options, &status] { status = repair(*options); });
}
