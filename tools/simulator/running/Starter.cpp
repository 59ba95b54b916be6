#include "running/Starter.h"

#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/CommandRunner.h"
#include "running/ExitStatus.h"
#include "running/OldSystemCalls.h"

#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using Arguments = std::vector<std::string>;

[[noreturn]] void giveUp(const std::string& what, int error)
{
    complain(Failure(what, error).what());
    ::_exit(NotStarted);
}

/** Prepares a new process for its program and becomes that. */
[[noreturn]] void become(const Launch& launch, Arguments arguments, const Signals& signals)
{
    if (!launch.directory.empty() && ::chdir(launch.directory.c_str()) != 0) {
        giveUp("cannot use '" + launch.directory.string() + "'", errno);
    }
    for (const auto& [name, value] : launch.environment) {
        ::setenv(name.c_str(), value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
    }
    arguments.insert(arguments.end(), launch.command.begin(), launch.command.end());
    signals.restore();
    const std::filesystem::path program =
        launch.program.empty() ? std::filesystem::path(launch.command.front()) : launch.program;
    const int error = ::become(program, arguments);
    giveUp("cannot run '" + program.string() + "'", error);
}

void add(Arguments& arguments, const Arguments& more)
{
    arguments.insert(arguments.end(), more.begin(), more.end());
}

void passOn(const syscalls::FileDescriptor& file)
{
    ::fcntl(file.get(), F_SETFD, 0);
}

pid_t forkOrThrow()
{
    const pid_t process = ::fork();
    if (process == -1) {
        throw Failure("cannot start a process", errno);
    }
    return process;
}

Started startBubblewrap(const Launch& launch, const Signals& signals)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw Failure("cannot make a pipe", errno);
    }
    Started started;
    started.reports = syscalls::FileDescriptor(ends[0]);
    const syscalls::FileDescriptor writing(ends[1]);
    started.process = forkOrThrow();
    if (started.process == 0) {
        passOn(writing);
        Arguments arguments{"bwrap", "--json-status-fd", std::to_string(writing.get())};
        add(arguments, launch.programArguments);
        arguments.emplace_back("--");
        become(launch, arguments, signals);
    }
    return started;
}

/**
 * proot waits for all that the command leaves running, and cannot tell which signal ended it. So
 * it has no part in the command's standard streams, and a program of this one's runs the command.
 */
Started startProot(const Launch& launch, const Signals& signals)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw Failure("cannot make a pair of sockets", errno);
    }
    Started started;
    started.reports = syscalls::FileDescriptor(ends[0]);
    started.complaints = makeScratchFile();
    const syscalls::FileDescriptor far(ends[1]);
    sendStandardStreams(started.reports);
    started.process = forkOrThrow();
    if (started.process == 0) {
        leaveStandardStreams(started.complaints);
        if (const int error = allowOldSystemCallsOnly()) {
            giveUp("cannot filter system calls", error);
        }
        passOn(far);
        Arguments arguments{"proot"};
        add(arguments, launch.programArguments);
        add(arguments, argumentsToRunCommand(far.get()));
        become(launch, arguments, signals);
    }
    return started;
}

Started startAlone(const Launch& launch, const Signals& signals)
{
    Started started;
    started.process = forkOrThrow();
    if (started.process == 0) {
        become(launch, {}, signals);
    }
    return started;
}

} // namespace

int become(const std::filesystem::path& program, const Arguments& arguments)
{
    Arguments copies = arguments;
    std::vector<char*> pointers;
    pointers.reserve(copies.size() + 1);
    for (std::string& word : copies) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    // As a shell does, runs a text without an interpreter's name with sh.
    ::execvp(program.c_str(), pointers.data());
    return errno;
}

Started start(const Launch& launch, const Signals& signals)
{
    switch (launch.through) {
    case Launch::Through::Bubblewrap:
        return startBubblewrap(launch, signals);
    case Launch::Through::Proot:
        return startProot(launch, signals);
    case Launch::Through::Nothing:
        break;
    }
    return startAlone(launch, signals);
}

int waitForEnd(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
    return exitStatus(status);
}

void leaveStandardStreams(const syscalls::FileDescriptor& complaints)
{
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(nothing, STDOUT_FILENO);
    ::dup2(complaints.get(), STDERR_FILENO);
}

syscalls::FileDescriptor makeScratchFile()
{
    syscalls::FileDescriptor file(::memfd_create("complaints", MFD_CLOEXEC));
    if (!file.isOpen()) {
        throw Failure("cannot make a file in memory", errno);
    }
    return file;
}

std::string firstLine(const syscalls::FileDescriptor& scratch)
{
    std::array<char, 1024> buffer{};
    const ssize_t count = ::pread(scratch.get(), buffer.data(), buffer.size(), 0);
    const std::string text(buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0));
    return text.substr(0, text.find('\n'));
}
