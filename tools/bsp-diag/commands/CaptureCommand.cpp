#include "commands/Commands.h"

#include "Hardware.h"
#include "Text.h"
#include "capsule/Capture.h"
#include "evidence/GlibcLocks.h"
#include "findings/Subjects.h"
#include "findings/Texts.h"

#include <chrono>
#include <climits>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include <fcntl.h>

namespace
{

constexpr std::chrono::milliseconds LockLimit(2000);

Json capsuleOf(const Evidence& evidence, const capsule::Contents& contents)
{
    const Diagnosis diagnosis = diagnose(evidence);
    Json document = facts::document("capsule");
    document["taken"] = timeText(std::time(nullptr));
    document["wordSize"] = sizeof(void*) * CHAR_BIT;
    document["board"] = facts::boardFacts(evidence.rawBoard());
    document["findings"] = Json::array();
    for (const Finding& finding : diagnosis.findings) {
        document["findings"].push_back(jsonOf(finding));
    }
    document["notLookedAt"] = diagnosis.notLookedAt;
    document["contents"] = capsule::jsonOf(contents);
    return document;
}

/** Makes a new file, for its owner alone until he says otherwise. */
bool writeNew(const std::string& path, const std::string& text)
{
    constexpr mode_t ownersAlone = 0600;
    const syscalls::FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownersAlone));
    if (!file.isOpen()) {
        return false;
    }
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(file.get(), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            const int error = errno;
            ::unlink(path.c_str());
            errno = error;
            return false;
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

template <typename Value>
void list(const char* what, const Reading<Value>& reading, const std::string& how)
{
    std::cout << what << ": " << (reading.isKnown() ? how : "left out, " + reading.reason())
              << '\n';
}

/** What went in, for whoever gives the capsule away. */
void listContents(const capsule::Contents& contents, const Json& document)
{
    std::cout << "versions: " << facts::Schema << ", " << document["version"].get<std::string>()
              << ", " << document["wordSize"] << " bits\n"
              << "time: " << document["taken"].get<std::string>() << '\n';
    list("EEPROM", contents.eeprom, "8 bytes");
    list("warm area", contents.warmArea,
         std::to_string(hardware::WarmAreaSize) + " bytes, " + contents.warmAreaTaken);
    list("registers", contents.resetCause, "the cause of the last restart");
    list("settings", contents.settings,
         contents.settings.isKnown() ? std::to_string(contents.settings->size()) + " bytes" : "");
    for (const capsule::Led& led : contents.leds) {
        list(("LED " + led.name).c_str(), led.state, "its state and triggers");
    }
    std::cout << "cold marker: whether it is there\n";
    for (const capsule::SharedFile& file : contents.sharedFiles) {
        std::cout << "shared memory: " << file.name << ", its size, mode and user\n";
    }
    list("semaphore", contents.semaphore, "its value");
    std::cout << "held mutexes: " << contents.heldMutexes.size() << " in words\n"
              << "answers of the layer: " << document["board"].size() << '\n'
              << "findings: " << document["findings"].size() << ", with names of processes\n"
              << "not looked at: " << document["notLookedAt"].size() << " in words\n";
}

int capture(const std::string& path)
{
    const Evidence evidence(Places{}, Moment);
    const capsule::Contents contents = captureContents(evidence, LockLimit);
    const Json document = capsuleOf(evidence, contents);
    if (!writeNew(path, facts::textOf(document))) {
        std::cerr << "bsp-diag: cannot make '" << path << "': " << errorText(errno) << '\n';
        return Found;
    }
    listContents(contents, document);
    return Done;
}

} // namespace

void addCaptureCommand(CLI::App& app, int& status)
{
    CLI::App* const command = app.add_subcommand(
        "capture", "Write a capsule of this board, to make a simulated board of it elsewhere");
    const auto path = std::make_shared<std::string>();
    command->add_option("FILE", *path, "The capsule, which must not exist")->required();
    command->callback([path, &status] { status = capture(*path); });
}
