#include "TracedProcess.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/personality.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults
{

namespace
{

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** A file in memory that takes what a program prints. */
class Captured
{
public:
    Captured() : m_fd(::memfd_create("captured", MFD_CLOEXEC)) {}
    ~Captured() { ::close(m_fd); }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;

    int fd() const { return m_fd; }
    std::string text() const
    {
        std::string bytes(static_cast<std::size_t>(::lseek(m_fd, 0, SEEK_END)), '\0');
        if (::pread(m_fd, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
            fail("pread");
        }
        return bytes;
    }

private:
    const int m_fd;
};

/** A traced program, from its start to its end. */
class Tracer
{
public:
    Tracer(const std::vector<std::string>& words, const std::optional<Fault>& fault, bool isWatched,
           std::chrono::milliseconds limit)
        : m_isWatched(isWatched), m_fault(fault), m_process(start(words, limit))
    {}

    ProgramRun toTheEnd()
    {
        int status = 0;
        while (true) {
            struct rusage usage = {};
            if (::wait4(m_process, &status, 0, &usage) != m_process) {
                fail("wait4");
            }
            m_run.pageFaults = usage.ru_minflt;
            if (WIFEXITED(status) || WIFSIGNALED(status)) {
                break;
            }
            handle(WSTOPSIG(status));
        }
        m_run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        m_run.out = m_out.text();
        m_run.err = m_err.text();
        return std::move(m_run);
    }

private:
    pid_t start(const std::vector<std::string>& words, std::chrono::milliseconds limit) const
    {
        const pid_t process = ::fork();
        if (process != 0) {
            return process;
        }
        std::vector<char*> argv;
        for (const std::string& word : words) {
            argv.push_back(const_cast<char*>(word.c_str())); // NOLINT: execv's interface
        }
        argv.push_back(nullptr);
        const int nothing = ::open("/dev/null", O_RDONLY);
        ::dup2(nothing, STDIN_FILENO);
        ::close(nothing);
        ::dup2(m_out.fd(), STDOUT_FILENO);
        ::dup2(m_err.fd(), STDERR_FILENO);
        // What the program costs does not depend on where it lies.
        ::personality(ADDR_NO_RANDOMIZE);
        const struct rlimit noCore = {0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        const struct itimerval timer = {{0, 0},
                                        {limit.count() / 1000, limit.count() % 1000 * 1000}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }

    void resume(int signal)
    {
        const auto request = m_isWatched ? PTRACE_SYSCALL : PTRACE_CONT;
        if (::ptrace(request, m_process, nullptr, signal) != 0 && errno != ESRCH) {
            fail("PTRACE_CONT");
        }
    }

    void handle(int signal)
    {
        constexpr int SystemCall = SIGTRAP | 0x80;
        if (!m_isSetUp) {
            m_isSetUp = true;
            if (::ptrace(PTRACE_SETOPTIONS, m_process, nullptr,
                         PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) {
                fail("PTRACE_SETOPTIONS");
            }
            resume(0);
        } else if (signal == SystemCall) {
            user_regs_struct registers{};
            if (::ptrace(PTRACE_GETREGS, m_process, nullptr, &registers) != 0) {
                fail("PTRACE_GETREGS");
            }
            m_isInside = !m_isInside;
            m_isInside ? enter(registers) : leave(registers);
            resume(0);
        } else {
            resume(signal == SIGTRAP ? 0 : signal);
        }
    }

    bool isFaulty() const { return m_fault && m_run.calls.size() == m_fault->call + 1; }

    void enter(user_regs_struct& registers)
    {
        const auto number = static_cast<long>(registers.orig_rax);
        m_isListed = m_isListing && number != SYS_brk && number != SYS_getrandom;
        // The first that main does is to look whether the standard streams are there.
        m_isListing = m_isListing || (number == SYS_fcntl && registers.rdi == STDIN_FILENO &&
                                      registers.rsi == F_GETFD);
        if (!m_isListed) {
            return;
        }
        if (number == SYS_exit_group) {
            listOpenFiles();
            return;
        }
        m_run.calls.push_back({number,
                               {static_cast<long>(registers.rdi), static_cast<long>(registers.rsi),
                                static_cast<long>(registers.rdx), static_cast<long>(registers.r10)},
                               0});
        if (!isFaulty()) {
            return;
        }
        switch (m_fault->kind) {
        case Fault::Fails:
        case Fault::GivesNothing:
            registers.orig_rax = static_cast<unsigned long long>(-1);
            break;
        case Fault::IsShort:
            registers.rdx = 1;
            break;
        case Fault::Kills:
            ::kill(m_process, SIGKILL);
            return;
        case Fault::FailsDone:
            return;
        }
        if (::ptrace(PTRACE_SETREGS, m_process, nullptr, &registers) != 0) {
            fail("PTRACE_SETREGS");
        }
    }

    void leave(user_regs_struct& registers)
    {
        if (!m_isListed) {
            return;
        }
        if (isFaulty() && m_fault->kind != Fault::IsShort) {
            registers.rax = m_fault->kind == Fault::GivesNothing
                                ? 0
                                : static_cast<unsigned long long>(-m_fault->error);
            if (m_fault->kind != Fault::Kills &&
                ::ptrace(PTRACE_SETREGS, m_process, nullptr, &registers) != 0) {
                fail("PTRACE_SETREGS");
            }
        }
        m_run.calls.back().result = static_cast<long>(registers.rax);
    }

    void listOpenFiles()
    {
        const std::string folder = "/proc/" + std::to_string(m_process) + "/fd";
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::error_code ignored;
            m_run.openFiles.push_back(std::filesystem::read_symlink(entry.path(), ignored));
        }
    }

    const bool m_isWatched;
    const std::optional<Fault> m_fault;
    const Captured m_out;
    const Captured m_err;
    ProgramRun m_run{};
    bool m_isSetUp = false;
    bool m_isInside = false;
    bool m_isListing = false;
    bool m_isListed = false; /**< The call that the program is in. */
    const pid_t m_process;
};

} // namespace

ProgramRun run(const std::vector<std::string>& words, std::chrono::milliseconds limit)
{
    return Tracer(words, std::nullopt, false, limit).toTheEnd();
}

ProgramRun runWatched(const std::vector<std::string>& words, const std::optional<Fault>& fault)
{
    return Tracer(words, fault, true, LongestRun).toTheEnd();
}

} // namespace faults
