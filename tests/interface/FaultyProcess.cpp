#include "FaultyProcess.h"

#include "FakeBoard.h"
#include "FakeDevices.h"
#include "Files.h"
#include "PlatformScope.h"
#include "WaitingProcess.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace interface
{

namespace
{

using interposed::Fault;
using testsupport::PlatformScope;

/** What the process says, also when it does not come to its end. */
struct Report
{
    interposed::Record record;
    Answer answer;
    Answer next;
    int error;
    long openFiles;
    std::size_t messagesSize;
    std::array<char, 60000> messages;
};

/** Memory that both processes see. */
Report& sharedReport()
{
    static Report& report = *static_cast<Report*>(
        ::mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return report;
}

constexpr const char* Errors = "/tmp/errors";

[[noreturn]] void throwAsTold(const Fault& fault)
{
    if (fault.value != 0) {
        throw fault.value;
    }
    throw std::runtime_error("no bus");
}

/** The platform's calls that fail. */
void scriptPlatform()
{
    using interposed::enter;
    fakeboard::eeprom().onRead = [] {
        if (const auto fault = enter("e2prom_data_read")) {
            fakeboard::eeprom().result = fault->value;
        }
    };
    fakeboard::store().onUse = [] {
        fakeboard::store().refuses = enter("NxuConfig refuses").has_value();
        if (const auto fault = enter("NxuConfig throws")) {
            throwAsTold(*fault);
        }
    };
    fakedevices::dtcm().onOpen = [] {
        if (enter("DDevIo_open")) {
            fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
        }
        if (const auto fault = enter("DDevIo_open throws")) {
            throwAsTold(*fault);
        }
    };
    fakedevices::control().onCreate = [] {
        using fakedevices::Control;
        Control& control = fakedevices::control();
        control.kind = Control::Registers;
        if (enter("createUnique")) {
            control.kind = Control::Missing;
        } else if (enter("createUnique of another type")) {
            control.kind = Control::OtherType;
        } else if (const auto fault = enter("createUnique throws")) {
            throwAsTold(*fault);
        }
        control.readFails = enter("Device::read").has_value();
    };
}

void answerTo(void (*perform)(Answer&), Answer& answer)
{
    try {
        perform(answer);
    } catch (const std::exception& exception) {
        const PlatformScope scope;
        answer << "exception:" << exception.what();
    } catch (...) {
        answer << "exception";
    }
}

long openFiles()
{
    const PlatformScope scope;
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

[[noreturn]] void runCase(const Case& what, const std::optional<Fault>& fault)
{
    Report& report = sharedReport();
    const int errors = ::open(Errors, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(errors, STDERR_FILENO);
    ::close(errors);
    const struct rlimit noCore = {0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    recordingtrace::setObserver(keepMessage);
    scriptPlatform();
    interposed::standBetween();
    if (what.prepare != nullptr) {
        what.prepare();
    }
    if (what.isRepeated) {
        Answer ignored;
        answerTo(what.perform, ignored);
    }
    if (what.isEnd) {
        what.perform(report.answer);
        report.messagesSize = 0;
        interposed::watch(report.record, what.broken, fault);
        std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
    }
    const long before = openFiles();
    errno = 0;
    interposed::watch(report.record, what.broken, fault);
    answerTo(what.perform, report.answer);
    const int error = errno;
    interposed::unwatch();
    report.error = error;
    report.openFiles = openFiles() - before;
    recordingtrace::setObserver({});
    answerTo(what.perform, report.next);
    std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

} // namespace

bool isTraced()
{
    const char* const isolation = std::getenv("BSP_TEST_PRIVATE_BOARD");
    return isolation != nullptr && std::strcmp(isolation, "proot") == 0;
}

void keepMessage(const recordingtrace::Message& message)
{
    Report& report = sharedReport();
    const std::string line = message.channel + ' ' + std::to_string(message.level) + ' ' +
                             message.text +
                             (message.text.empty() || message.text.back() != '\n' ? "\n" : "");
    if (report.messagesSize + line.size() < report.messages.size()) {
        std::memcpy(report.messages.data() + report.messagesSize, line.data(), line.size());
        report.messagesSize += line.size();
    }
}

Outcome perform(const Case& what, const std::optional<Fault>& fault)
{
    Report& report = sharedReport();
    std::memset(static_cast<void*>(&report), 0, offsetof(Report, messages));
    makeBoard();
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (process == 0) {
        runCase(what, fault);
    }
    const int status = testsupport::endOf(process);
    return {report.record,
            report.answer.text(),
            report.next.text(),
            report.error,
            report.openFiles,
            status,
            testsupport::readFile(Errors),
            linesOf({report.messages.data(), report.messagesSize}),
            leftFiles()};
}

} // namespace interface
