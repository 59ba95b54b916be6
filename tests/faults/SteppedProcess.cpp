#include "SteppedProcess.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include <sched.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults
{

namespace
{

/** One processor for both: they take turns at every instruction, and need not wake each other up.
 */
void stayOnOneProcessor()
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &processors);
    ::sched_setaffinity(0, sizeof processors, &processors);
}

/** How many there are of the others depends on the heap's state, and on chance. */
bool isCounted(long systemCall)
{
    return systemCall != SYS_brk && systemCall != SYS_getrandom;
}

/** A process that has stopped in front of its work. */
class Stepped
{
public:
    explicit Stepped(const Work& work)
    {
        std::fflush(nullptr);
        stayOnOneProcessor();
        m_process = ::fork();
        if (m_process == -1) {
            throw std::system_error(errno, std::generic_category(), "fork");
        }
        if (m_process == 0) {
            run(work);
        }
        wait();
        request(PTRACE_SETOPTIONS, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }
    ~Stepped()
    {
        if (m_isThere) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
    }
    Stepped(const Stepped&) = delete;
    Stepped& operator=(const Stepped&) = delete;

    bool isThere() const { return m_isThere; }

    /** Whether the next instruction is a system call that counts. */
    bool isAtSystemCall() const
    {
        constexpr long SyscallInstruction = 0x050F;
        const long place = registerAt(offsetof(user_regs_struct, rip));
        return (::ptrace(PTRACE_PEEKTEXT, m_process, place, nullptr) & 0xFFFF) ==
                   SyscallInstruction &&
               isCounted(registerAt(offsetof(user_regs_struct, rax)));
    }

    void step()
    {
        request(PTRACE_SINGLESTEP, 0);
        wait();
    }

    /** Goes on until the next system call that counts is done. */
    void passSystemCall()
    {
        bool isPassed = false;
        while (!isPassed) {
            goToSystemCall();
            isPassed = isCounted(registerAt(offsetof(user_regs_struct, orig_rax)));
            goToSystemCall();
        }
    }

private:
    [[noreturn]] static void run(const Work& work)
    {
        if (work.before) {
            work.before();
        }
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        work.work();
        ::_exit(0);
    }

    long registerAt(std::size_t offset) const
    {
        return ::ptrace(PTRACE_PEEKUSER, m_process, offset, nullptr);
    }

    /** Goes on to the next beginning or end of a system call. */
    void goToSystemCall()
    {
        request(PTRACE_SYSCALL, 0);
        if (wait() != (SIGTRAP | 0x80)) {
            throw std::runtime_error("it makes fewer system calls than before");
        }
    }

    void request(__ptrace_request what, long argument) const
    {
        if (::ptrace(what, m_process, nullptr, argument) != 0) {
            throw std::system_error(errno, std::generic_category(), "ptrace");
        }
    }

    /** The signal that has stopped it. */
    int wait()
    {
        int status = 0;
        if (::waitpid(m_process, &status, 0) != m_process) {
            throw std::system_error(errno, std::generic_category(), "waitpid");
        }
        m_isThere = WIFSTOPPED(status);
        if (!m_isThere && (!WIFEXITED(status) || WEXITSTATUS(status) != 0)) {
            throw std::runtime_error("it ended with the status " + std::to_string(status));
        }
        return m_isThere ? WSTOPSIG(status) : 0;
    }

    pid_t m_process = -1;
    bool m_isThere = true;
};

} // namespace

std::size_t runStepwise(const Work& work, const Look& look)
{
    Stepped process(work);
    look(true);
    std::size_t count = 0;
    for (; process.isThere(); ++count) {
        const bool isSystemCall = process.isAtSystemCall();
        process.step();
        if (process.isThere()) {
            look(isSystemCall);
        }
    }
    return count;
}

void killWhen(const Work& work, std::size_t systemCalls, const std::function<bool()>& isThen)
{
    Stepped process(work);
    for (std::size_t i = 0; i < systemCalls; ++i) {
        process.passSystemCall();
    }
    while (!isThen()) {
        process.step();
        if (!process.isThere()) {
            throw std::runtime_error("it had ended before that moment");
        }
    }
}

} // namespace faults
