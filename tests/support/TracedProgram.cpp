#include "TracedProgram.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport
{

namespace
{

void check(long result, const char* what)
{
    if (result == -1) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/** A process's page faults until now. */
long pageFaultsOf(pid_t process)
{
    std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
    std::string skipped;
    std::getline(stat, skipped, ')');
    for (int field = 3; field < 10; ++field) {
        stat >> skipped;
    }
    long faults = 0;
    stat >> faults;
    return faults;
}

/** Lets the program go on until it makes the system call of this number, or its last. */
int goOnToCall(TracedProgram& program, int number)
{
    int calls = 0;
    while (calls < number && program.goOnToCall()) {
        calls += program.isInCall() ? 1 : 0;
    }
    return calls;
}

Program withoutStandardError(Program program)
{
    program.prepare = [] { ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO); };
    return program;
}

} // namespace

bool canTrace()
{
    return std::string(BSP_TEST_EMULATOR).empty();
}

TracedProgram::TracedProgram(Program program)
{
    // The search for leaks traces as well, and only one can.
    program.environment["ASAN_OPTIONS"] = "detect_leaks=0";
    program.prepare = [prepare = program.prepare] {
        if (prepare) {
            prepare();
        }
        if (::ptrace(PTRACE_TRACEME) == -1) {
            ::_exit(125);
        }
    };
    m_process = program.start();
    int status = 0;
    check(::waitpid(m_process, &status, 0), "waitpid");
    if (!WIFSTOPPED(status)) {
        throw std::runtime_error("cannot trace " + program.path);
    }
    check(
        ::ptrace(PTRACE_SETOPTIONS, m_process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL),
        "PTRACE_SETOPTIONS");
    // Those of the process that became the program are not its own.
    m_pageFaults = -pageFaultsOf(m_process);
}

bool TracedProgram::goOn(bool toCall)
{
    constexpr int CallStop = SIGTRAP | 0x80;
    for (int signal = 0;;) {
        // Who has been killed cannot go on.
        if (::ptrace(toCall ? PTRACE_SYSCALL : PTRACE_CONT, m_process, nullptr, signal) != 0 &&
            errno != ESRCH)
        {
            check(-1, "PTRACE_SYSCALL");
        }
        int status = 0;
        struct rusage usage = {};
        check(::wait4(m_process, &status, 0, &usage), "wait4");
        if (!WIFSTOPPED(status)) {
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            m_pageFaults += usage.ru_minflt;
            return false;
        }
        if (WSTOPSIG(status) == CallStop) {
            m_isInCall = !m_isInCall;
            return true;
        }
        signal = WSTOPSIG(status);
    }
}

bool actAtCall(const Program& program, int number, const std::function<void(pid_t)>& action)
{
    TracedProgram traced(withoutStandardError(program));
    if (goOnToCall(traced, number) < number) {
        return false;
    }
    action(traced.process());
    // A killed process cannot be detached from.
    ::ptrace(PTRACE_DETACH, traced.process(), nullptr, nullptr);
    waitFor(traced.process());
    return true;
}

int countCalls(const Program& program)
{
    TracedProgram traced(withoutStandardError(program));
    return goOnToCall(traced, std::numeric_limits<int>::max());
}

} // namespace testsupport
