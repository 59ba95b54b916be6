#include "capsule/Capture.h"

#include "Text.h"
#include "WarmLayout.h"
#include "evidence/BoardFiles.h"
#include "findings/SharedNames.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>

namespace
{

using os::bsp::dtcm::SemaphoreName;

/** Keeps signals away, so that none ends this process while it holds a lock of others. */
class NoSignals
{
public:
    NoSignals()
    {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &m_former);
    }
    ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t m_former{};
};

/** The semaphore of the warm area, taken if that was possible. */
class TakenSemaphore
{
public:
    TakenSemaphore(const SharedName& name, std::chrono::milliseconds limit)
    {
        if (!name.file) {
            m_why = "there is none, as no program uses the area";
        } else if (name.file->size() != sizeof(sem_t)) {
            m_why = "it is not one of this machine";
        } else {
            take(limit);
        }
    }
    ~TakenSemaphore()
    {
        if (m_why.empty()) {
            ::sem_post(m_semaphore);
        }
        if (m_semaphore != SEM_FAILED) {
            ::sem_close(m_semaphore);
        }
    }
    TakenSemaphore(const TakenSemaphore&) = delete;
    TakenSemaphore& operator=(const TakenSemaphore&) = delete;

    /** Why it is not taken; empty when it is. */
    const std::string& why() const { return m_why; }

private:
    void take(std::chrono::milliseconds limit)
    {
        m_semaphore = ::sem_open(SemaphoreName, 0);
        if (m_semaphore == SEM_FAILED) {
            m_why = errorText(errno);
            return;
        }
        const timespec end = timeIn(limit);
        int result = 0;
        do {
            result = ::sem_timedwait(m_semaphore, &end);
        } while (result == -1 && errno == EINTR);
        if (result == -1) {
            m_why = "it was held for " + std::to_string(limit.count()) + " ms";
        }
    }

    static timespec timeIn(std::chrono::milliseconds limit)
    {
        using std::chrono::nanoseconds;
        using std::chrono::seconds;
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        const auto end = seconds(now.tv_sec) + nanoseconds(now.tv_nsec) + limit;
        const auto whole = std::chrono::duration_cast<seconds>(end);
        return {static_cast<std::time_t>(whole.count()),
                static_cast<long>(nanoseconds(end - whole).count())};
    }

    const NoSignals m_noSignals;
    sem_t* m_semaphore = SEM_FAILED;
    std::string m_why;
};

void takeWarmArea(const Evidence& evidence, std::chrono::milliseconds limit,
                  capsule::Contents& contents)
{
    const TakenSemaphore semaphore(evidence.names.semaphore, limit);
    contents.warmArea = evidence.dtcm.area();
    contents.warmAreaTaken =
        semaphore.why().empty() ? "under its lock" : "without its lock: " + semaphore.why();
}

/** The value that the semaphore has when this process does not hold it. */
Reading<std::uint32_t> semaphoreValue(const Evidence& evidence)
{
    using Unknown = Reading<std::uint32_t>;
    const SharedName& name = evidence.names.semaphore;
    if (!name.file) {
        return Unknown::unknown("there is none");
    }
    const auto wordSize = wordSizeOfSemaphore(name.file->size());
    const auto state = wordSize
                           ? glibc::semaphoreState(name.file->bytes(name.file->size()), *wordSize)
                           : std::nullopt;
    if (!state) {
        return Unknown::unknown("it cannot be read");
    }
    // What is 0 for a moment is used by a program that gives it back.
    return evidence.held.waitersForSemaphore ? 0 : std::max(state->value, 1U);
}

/** The file as it is: one that is damaged does not lose that on its way. */
Reading<std::string> settingsInFile(const std::string& path)
{
    using Text = Reading<std::string>;
    constexpr std::size_t most = 1024UL * 1024;
    const syscalls::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status
    {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return Text::unknown(errno == ENOENT ? "there are none" : errorText(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return Text::unknown("they are no regular file");
    }
    std::string text = bytesOf(file, most + 1);
    return text.size() > most
               ? Text::unknown("they are more than " + std::to_string(most) + " bytes")
               : Text(std::move(text));
}

Reading<std::string> settingsText(const Evidence& evidence)
{
    using Text = Reading<std::string>;
    if (const std::optional<std::string> path = settingsFile()) {
        return settingsInFile(*path);
    }
    if (!evidence.settings.isKnown()) {
        return Text::unknown(evidence.settings.reason());
    }
    std::string text;
    for (const auto& [key, value] : *evidence.settings) {
        if (!value.empty()) {
            text.append(key).append("=").append(value).append("\n");
        }
    }
    return text;
}

std::vector<std::string> heldMutexes(const Evidence& evidence)
{
    std::vector<std::string> texts;
    for (const auto& [block, thread] : evidence.held.blocks) {
        texts.push_back("block " + std::to_string(block) + ": " +
                        holderOf(evidence, thread, evidence.names.syncArea.file->identity()).text);
    }
    if (evidence.held.slot) {
        texts.push_back("slot id: " +
                        holderOf(evidence, *evidence.held.slot, evidence.dtcm.identity()).text);
    }
    return texts;
}

} // namespace

capsule::Contents captureContents(const Evidence& evidence, std::chrono::milliseconds limit)
{
    capsule::Contents contents;
    contents.eeprom = hardwareCode();
    takeWarmArea(evidence, limit, contents);
    contents.resetCause = evidence.resetCause;
    contents.coldMarker = evidence.coldMarker;
    contents.settings = settingsText(evidence);
    for (const LedEvidence& led : evidence.leds) {
        contents.leds.push_back({led.name, led.trigger, led.state});
    }
    for (const std::optional<SharedFile>* const file :
         {&evidence.names.semaphore.file, &evidence.names.syncArea.file,
          &evidence.kernelImage.file})
    {
        if (*file) {
            constexpr mode_t permissions = 07777;
            const struct stat& status = (*file)->status();
            contents.sharedFiles.push_back({(*file)->path().substr((*file)->path().rfind('/') + 1),
                                            (*file)->size(), status.st_mode & permissions,
                                            status.st_uid});
        }
    }
    contents.semaphore = semaphoreValue(evidence);
    contents.heldMutexes = heldMutexes(evidence);
    return contents;
}
