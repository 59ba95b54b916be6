#include "TracedProcess.h"

#include "TracedProgram.h"

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

/** How the program is started; what it prints goes to those files. */
testsupport::Program programOf(const std::vector<std::string>& words, const Captured& out,
                               const Captured& err, std::chrono::milliseconds limit)
{
    testsupport::Program program{};
    program.path = words.front();
    program.arguments.assign(words.begin() + 1, words.end());
    program.prepare = [&out, &err, limit] {
        const int nothing = ::open("/dev/null", O_RDONLY);
        ::dup2(nothing, STDIN_FILENO);
        ::close(nothing);
        ::dup2(out.fd(), STDOUT_FILENO);
        ::dup2(err.fd(), STDERR_FILENO);
        // What the program costs does not depend on where it lies.
        ::personality(ADDR_NO_RANDOMIZE);
        const struct rlimit noCore = {0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        const struct itimerval timer = {{0, 0},
                                        {limit.count() / 1000, limit.count() % 1000 * 1000}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
    };
    return program;
}

/** A traced program, from its start to its end. */
class Tracer
{
public:
    Tracer(const std::vector<std::string>& words, const std::optional<Fault>& fault,
           std::chrono::milliseconds limit)
        : m_fault(fault), m_program(programOf(words, m_out, m_err, limit))
    {}

    ProgramRun toTheEnd(bool isWatched)
    {
        while (isWatched && m_program.goOnToCall()) {
            user_regs_struct registers{};
            if (::ptrace(PTRACE_GETREGS, m_program.process(), nullptr, &registers) != 0) {
                fail("PTRACE_GETREGS");
            }
            m_program.isInCall() ? enter(registers) : leave(registers);
        }
        if (!isWatched) {
            m_program.goOnToEnd();
        }
        m_run.status = m_program.status();
        m_run.pageFaults = m_program.pageFaults();
        m_run.out = m_out.text();
        m_run.err = m_err.text();
        return std::move(m_run);
    }

private:
    void setRegisters(user_regs_struct& registers) const
    {
        if (::ptrace(PTRACE_SETREGS, m_program.process(), nullptr, &registers) != 0) {
            fail("PTRACE_SETREGS");
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
            ::kill(m_program.process(), SIGKILL);
            return;
        case Fault::FailsDone:
            return;
        }
        setRegisters(registers);
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
            setRegisters(registers);
        }
        m_run.calls.back().result = static_cast<long>(registers.rax);
    }

    void listOpenFiles()
    {
        const std::string folder = "/proc/" + std::to_string(m_program.process()) + "/fd";
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::error_code ignored;
            m_run.openFiles.push_back(std::filesystem::read_symlink(entry.path(), ignored));
        }
    }

    const std::optional<Fault> m_fault;
    const Captured m_out;
    const Captured m_err;
    ProgramRun m_run{};
    bool m_isListing = false;
    bool m_isListed = false; /**< The call that the program is in. */
    testsupport::TracedProgram m_program;
};

} // namespace

ProgramRun run(const std::vector<std::string>& words, std::chrono::milliseconds limit)
{
    return Tracer(words, std::nullopt, limit).toTheEnd(false);
}

ProgramRun runWatched(const std::vector<std::string>& words, const std::optional<Fault>& fault)
{
    return Tracer(words, fault, LongestRun).toTheEnd(true);
}

} // namespace faults
