#include "Traced.h"

#include <cerrno>
#include <csignal>
#include <limits>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport
{

namespace
{

constexpr int CallStop = SIGTRAP | 0x80;

void check(long result, const char* what)
{
    if (result == -1) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/** Lets the program go on to where a system call begins or ends; false when it ends instead. */
bool goOn(pid_t process)
{
    int signal = 0;
    for (;;) {
        check(::ptrace(PTRACE_SYSCALL, process, nullptr, signal), "PTRACE_SYSCALL");
        int status = 0;
        check(::waitpid(process, &status, 0), "waitpid");
        if (!WIFSTOPPED(status)) {
            return false;
        }
        if (WSTOPSIG(status) == CallStop) {
            return true;
        }
        signal = WSTOPSIG(status);
    }
}

/** Lets the program go on until it makes the system call of this number, or its last. */
int goOn(pid_t process, int number)
{
    for (int call = 1;; ++call) {
        if (!goOn(process)) {
            return call - 1;
        }
        if (call == number || !goOn(process)) {
            return call;
        }
    }
}

/** Starts a program, which waits before its first system call. */
pid_t startTraced(Program program)
{
    // The search for leaks traces as well, and only one can.
    program.environment["ASAN_OPTIONS"] = "detect_leaks=0";
    program.prepare = [] {
        ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
        if (::ptrace(PTRACE_TRACEME) == -1) {
            ::_exit(125);
        }
    };
    const pid_t process = program.start();
    int status = 0;
    check(::waitpid(process, &status, 0), "waitpid");
    if (!WIFSTOPPED(status)) {
        throw std::runtime_error("cannot trace " + program.path);
    }
    check(::ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL),
          "PTRACE_SETOPTIONS");
    return process;
}

} // namespace

bool canTrace()
{
    return std::string(BSP_TEST_EMULATOR).empty();
}

bool actAtCall(const Program& program, int number, const std::function<void(pid_t)>& action)
{
    const pid_t process = startTraced(program);
    if (goOn(process, number) < number) {
        return false;
    }
    action(process);
    // A killed process cannot be detached from.
    ::ptrace(PTRACE_DETACH, process, nullptr, nullptr);
    waitFor(process);
    return true;
}

int countCalls(const Program& program)
{
    return goOn(startTraced(program), std::numeric_limits<int>::max());
}

} // namespace testsupport
