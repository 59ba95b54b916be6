#include "findings/SharedNames.h"

#include <array>
#include <cstdio>

namespace
{

std::string modeText(mode_t mode)
{
    constexpr std::size_t enough = 8;
    constexpr mode_t permissions = 07777;
    std::array<char, enough> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04o",
                                    static_cast<unsigned int>(mode & permissions)));
    return text.data();
}

} // namespace

void judgeName(const SharedName& name, const std::string& subject, Diagnosis& diagnosis)
{
    constexpr mode_t forAll = 0666;
    if (name.file && !name.file->isRegular()) {
        diagnosis.add(subject + "-link", {{"place", name.file->text()},
                                          {"path", name.file->path()},
                                          {"kind", name.file->kind()}});
    } else if (name.file) {
        const std::string place = name.file->text();
        if (name.isUnused) {
            diagnosis.add(subject + "-unused", {{"place", place}});
        }
        if ((name.file->status().st_mode & forAll) != forAll) {
            diagnosis.add(subject + "-mode",
                          {{"place", place}, {"mode", modeText(name.file->status().st_mode)}});
        }
        if (!name.file->isReadable()) {
            diagnosis.miss("what is in " + name.file->path() + ": this user may not read it");
        }
    }
    if (!name.formerUsers.empty()) {
        diagnosis.add(subject + "-former",
                      {{"former", textOf(name.formerUsers)}, {"users", textOf(name.users)}});
    }
}

Holder holderOf(const Evidence& evidence, pid_t thread, const std::optional<FileIdentity>& file)
{
    if (thread == 0) {
        return {false, "no thread has said that it holds it"};
    }
    const std::string text = "thread " + std::to_string(thread);
    const std::optional<Process> process = evidence.processes.ofThread(thread);
    if (evidence.processes.hasEnded(thread)) {
        return {false, process ? text + " of " + process->text() + ", which has ended"
                               : text + ", which does not exist"};
    }
    if (!process) {
        return {true, text + " of a process that is hidden from this user"};
    }
    if (process->isSeen && file && !process->maps(*file)) {
        return {false, text + ", a number that is now of " + process->text() +
                           ", which does not use the store"};
    }
    return {true, text + " of " + process->text()};
}
