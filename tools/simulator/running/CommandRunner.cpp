#include "running/CommandRunner.h"

#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/ExitStatus.h"
#include "running/Starter.h"

#include <array>
#include <charconv>
#include <csignal>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr const char* Mark = "--command-runner";
constexpr std::size_t ArgumentsInFront = 2; // the mark and the socket's number

using Streams = std::array<int, 3>;

/** A message of one byte with room for the standard streams. */
struct Message
{
    Message()
    {
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = space.data();
        header.msg_controllen = space.size();
    }

    char byte = 0;
    iovec part{&byte, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(Streams))> space{};
    msghdr header{};
};

/** A closed stream cannot be given away; the null device stands for it. */
syscalls::FileDescriptor openIfClosed(int stream)
{
    const bool closed = ::fcntl(stream, F_GETFD) == -1;
    return syscalls::FileDescriptor(closed ? ::open("/dev/null", O_RDWR | O_CLOEXEC) : -1);
}

bool takeStandardStreams(int socket)
{
    Message message;
    if (::recvmsg(socket, &message.header, MSG_CMSG_CLOEXEC) != 1) {
        return false;
    }
    const cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
    if (control == nullptr || control->cmsg_len != CMSG_LEN(sizeof(Streams))) {
        return false;
    }
    Streams streams{};
    std::memcpy(streams.data(), CMSG_DATA(control), sizeof streams);
    for (int stream = 0; stream < static_cast<int>(streams.size()); ++stream) {
        ::dup2(streams[static_cast<std::size_t>(stream)], stream);
        ::close(streams[static_cast<std::size_t>(stream)]);
    }
    return true;
}

/** The socket that the arguments in front of the command name; users have none to name. */
std::optional<int> socketOf(const std::vector<std::string>& arguments)
{
    const std::string& text = arguments[1];
    int number = -1;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    struct stat status
    {};
    if (result.ec != std::errc() || ::fstat(number, &status) != 0 || !S_ISSOCK(status.st_mode)) {
        return std::nullopt;
    }
    return number;
}

void report(int socket, const char* what, int number)
{
    const std::string text = '"' + std::string(what) + "\": " + std::to_string(number) + '\n';
    ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
}

[[noreturn]] void becomeCommand(const std::vector<std::string>& command)
{
    const int error = become(command.front(), command);
    complain(Failure("cannot run '" + command.front() + "'", error).what());
    ::_exit(error == ENOENT ? NotFound : NotRunnable);
}

} // namespace

std::filesystem::path ownProgram()
{
    std::error_code error;
    std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        throw Failure("cannot find this program's file", error.value());
    }
    return program;
}

std::vector<std::string> argumentsToRunCommand(int socket)
{
    return {ownProgram(), Mark, std::to_string(socket)};
}

void sendStandardStreams(const syscalls::FileDescriptor& socket)
{
    Streams streams{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    std::array<syscalls::FileDescriptor, 3> substitutes;
    for (std::size_t i = 0; i < streams.size(); ++i) {
        substitutes[i] = openIfClosed(streams[i]);
        streams[i] = substitutes[i].isOpen() ? substitutes[i].get() : streams[i];
    }
    Message message;
    cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof streams);
    std::memcpy(CMSG_DATA(control), streams.data(), sizeof streams);
    if (::sendmsg(socket.get(), &message.header, MSG_NOSIGNAL) != 1) {
        throw Failure("cannot pass the standard streams on", errno);
    }
}

bool isCommandRunner(const std::vector<std::string>& arguments)
{
    return arguments.size() > ArgumentsInFront && arguments.front() == Mark && socketOf(arguments);
}

int runCommand(const std::vector<std::string>& arguments)
{
    const int socket = *socketOf(arguments);
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    if (!takeStandardStreams(socket)) {
        return NotStarted;
    }
    // Signals are for the command.
    sigset_t all{};
    sigset_t former{};
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former);
    const pid_t command = ::fork();
    if (command == -1) {
        throw Failure("cannot start a process", errno);
    }
    if (command == 0) {
        ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
        becomeCommand({arguments.begin() + ArgumentsInFront, arguments.end()});
    }
    report(socket, "child-pid", command);
    const int status = waitForEnd(command);
    report(socket, "exit-code", status);
    return status;
}
