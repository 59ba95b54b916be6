#include "evidence/ProcessTable.h"

#include "Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <signal.h> // NOLINT(modernize-deprecated-headers): kill is POSIX's
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr pid_t FirstProcess = 1;

/** What /proc/PID/stat says of a process or thread. */
struct Statistics
{
    std::string name;
    bool hasEnded = false;
    bool isOfKernel = false;
    std::uint64_t startedAfterBoot = 0; /**< In clock ticks. */
};

/** What can be read of a file: that of a process which ends meanwhile ends by an error. */
std::string textOfFile(const std::string& path)
{
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::optional<Statistics> statisticsOf(const std::string& directory)
{
    constexpr int stateField = 3; // the first behind the name, which may have any character
    constexpr int flagsField = 9;
    constexpr int startField = 22;
    constexpr unsigned long ofKernel = 0x00200000;
    const std::string text = textOfFile(directory + "/stat");
    const std::size_t nameBegin = text.find('(');
    const std::size_t nameEnd = text.rfind(')');
    if (nameBegin == std::string::npos || nameEnd == std::string::npos) {
        return std::nullopt;
    }
    Statistics result;
    result.name = printable(text.substr(nameBegin + 1, nameEnd - nameBegin - 1));
    std::istringstream fields(text.substr(nameEnd + 1));
    std::string field;
    for (int number = stateField; number <= startField && fields >> field; ++number) {
        if (number == stateField) {
            result.hasEnded = field == "Z" || field == "X";
        } else if (number == flagsField) {
            result.isOfKernel = (std::strtoul(field.c_str(), nullptr, 10) & ofKernel) != 0;
        } else if (number == startField) {
            result.startedAfterBoot = std::strtoull(field.c_str(), nullptr, 10);
        }
    }
    return result;
}

/** The shared mappings of a process whose first thread has ended: others may still run. */
std::optional<std::vector<Mapping>> mappingsOfThreads(const std::string& directory)
{
    std::error_code error;
    for (fs::directory_iterator thread(directory + "/task", error);
         !error && thread != fs::directory_iterator(); thread.increment(error))
    {
        auto mappings = sharedMappings(thread->path() / "maps");
        if (!mappings || !mappings->empty()) {
            return mappings;
        }
    }
    return std::vector<Mapping>();
}

/** Seconds since the epoch. */
std::int64_t bootTime(const std::string& directory)
{
    std::istringstream lines(textOfFile(directory + "/stat"));
    std::string word;
    std::int64_t time = 0;
    while (lines >> word) {
        if (word == "btime") {
            lines >> time;
        }
    }
    return time;
}

/** A number in the name of a directory of /proc; 0 when it is none. */
pid_t processNumber(const std::string& name)
{
    pid_t number = 0;
    const char* const end = name.data() + name.size();
    const auto result = std::from_chars(name.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? number : 0;
}

} // namespace

bool Process::maps(const FileIdentity& file) const
{
    return std::any_of(shared.begin(), shared.end(),
                       [&](const Mapping& mapping) { return mapping.file == file; });
}

std::string Process::text() const
{
    return name + " (" + std::to_string(id) + ", since " + started + ")";
}

std::string textOf(const Users& users)
{
    std::string text;
    for (const Process* const user : users) {
        text += (text.empty() ? "" : ", ") + user->text();
    }
    return text.empty() ? "no process" : text;
}

std::optional<std::vector<Mapping>> sharedMappings(const std::string& maps)
{
    std::ifstream file(maps);
    if (!file) {
        return std::nullopt;
    }
    constexpr std::size_t sharedFlag = 3;
    constexpr int hexadecimal = 16;
    std::vector<Mapping> mappings;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        Mapping mapping;
        std::string range;
        std::string rights;
        std::string offset;
        words >> range >> rights >> offset >> mapping.file.device >> mapping.file.inode >> std::ws;
        std::getline(words, mapping.path);
        if (rights.size() > sharedFlag && rights[sharedFlag] == 's') {
            mapping.begin =
                static_cast<std::uintptr_t>(std::strtoull(range.c_str(), nullptr, hexadecimal));
            mappings.push_back(mapping);
        }
    }
    // The file of another user's process can be opened, and then not be read.
    return file.bad() ? std::nullopt : std::optional(mappings);
}

std::string timeText(std::int64_t secondsSinceEpoch)
{
    constexpr std::size_t enough = 40;
    const auto time = static_cast<std::time_t>(secondsSinceEpoch);
    std::tm parts{};
    std::array<char, enough> text{};
    ::gmtime_r(&time, &parts);
    const std::size_t size =
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
    return {text.data(), size};
}

ProcessTable::ProcessTable(const Places& places)
    : m_directory(places.processes), m_bootTime(bootTime(places.processes))
{
    bool isFirstListed = false;
    std::error_code error;
    for (fs::directory_iterator entry(m_directory, error);
         !error && entry != fs::directory_iterator(); entry.increment(error))
    {
        const pid_t number = processNumber(entry->path().filename());
        m_isThere = m_isThere || number != 0;
        isFirstListed = isFirstListed || number == FirstProcess;
        if (number != 0 && number != ::getpid()) {
            add(number);
        }
    }
    m_hidesOthers = m_isThere && !isFirstListed;
}

void ProcessTable::add(pid_t number)
{
    const std::string directory = directoryOf(number);
    const std::optional<Statistics> statistics = statisticsOf(directory);
    if (statistics && statistics->isOfKernel) {
        return;
    }
    auto mappings = statistics && statistics->hasEnded ? mappingsOfThreads(directory)
                                                       : sharedMappings(directory + "/maps");
    // Not even root sees the first process where that has rights of its own; it starts the
    // others, and calls nobody's functions.
    std::error_code gone;
    const bool matters = number != FirstProcess && fs::exists(directory, gone);
    m_unseen += mappings || !matters ? 0 : 1;
    std::optional<Process> process = statistics ? look(number) : std::nullopt;
    if (process) {
        process->isSeen = mappings.has_value();
        process->shared = std::move(mappings).value_or(std::vector<Mapping>());
        m_processes.push_back(std::move(*process));
    }
}

std::string ProcessTable::directoryOf(pid_t process) const
{
    return m_directory + '/' + std::to_string(process);
}

std::optional<Process> ProcessTable::look(pid_t process) const
{
    const auto statistics = statisticsOf(directoryOf(process));
    if (!statistics) {
        return std::nullopt;
    }
    const auto ticks = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    const auto seconds = static_cast<std::int64_t>(statistics->startedAfterBoot / ticks);
    return Process{process, statistics->name, timeText(m_bootTime + seconds), false, {}};
}

bool ProcessTable::hasEnded(pid_t thread) const
{
    const auto statistics = statisticsOf(directoryOf(thread));
    if (statistics) {
        return statistics->hasEnded;
    }
    // What is hidden from this user can be asked for all the same.
    return ::kill(thread, 0) != 0 && errno != EPERM;
}

Users ProcessTable::mapping(const FileIdentity& file) const
{
    Users users;
    for (const Process& process : m_processes) {
        if (process.maps(file)) {
            users.push_back(&process);
        }
    }
    return users;
}

std::optional<Process> ProcessTable::ofThread(pid_t thread) const
{
    // A thread has a directory of its own, though the list shows only that of its process.
    std::istringstream words(textOfFile(directoryOf(thread) + "/status"));
    std::string word;
    pid_t process = 0;
    while (process == 0 && words >> word) {
        if (word == "Tgid:") {
            words >> process;
        }
    }
    const auto found = std::find_if(m_processes.begin(), m_processes.end(),
                                    [&](const Process& one) { return one.id == process; });
    if (found != m_processes.end()) {
        return *found;
    }
    return process == 0 ? std::nullopt : look(process);
}
