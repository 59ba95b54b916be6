#include "Supervisor.h"

#include "Failure.h"
#include "FileDescriptor.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int SignalBase = 128;

/** Signals that a process may be sent to make it end or do something. */
constexpr int PassedOn[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2};

/** Signals that came, by number; a handler reaches nothing but globals. */
std::array<volatile std::sig_atomic_t, NSIG> noted{};

/** Signals of the terminal have been sent to the command, too; those of processes have not. */
bool isFromProcess(const siginfo_t& info)
{
    return info.si_code <= 0;
}

void noteSignal(int signal, siginfo_t* info, void* /*context*/)
{
    if (signal == SIGCHLD || isFromProcess(*info)) {
        noted[static_cast<std::size_t>(signal)] = 1;
    }
}

/** Takes the signals of this process one by one; signals that are ignored stay ignored. */
class Signals
{
public:
    Signals()
    {
        sigset_t taken{};
        ::sigemptyset(&taken);
        for (const int signal : PassedOn) {
            struct sigaction current
            {};
            ::sigaction(signal, nullptr, &current);
            if (current.sa_handler != SIG_IGN) {
                take(signal, taken);
            }
        }
        take(SIGCHLD, taken);
        ::pthread_sigmask(SIG_BLOCK, &taken, &m_former);
        m_whileWaiting = m_former;
        ::sigdelset(&m_whileWaiting, SIGCHLD);
    }

    /** Waits for the next one. They are let in nowhere else, so none is missed. */
    int next() const
    {
        for (;;) {
            for (std::size_t signal = 0; signal < noted.size(); ++signal) {
                if (noted[signal] != 0) {
                    noted[signal] = 0;
                    return static_cast<int>(signal);
                }
            }
            ::sigsuspend(&m_whileWaiting); // NOLINT(concurrency-mt-unsafe): one thread
        }
    }

    /** Lets them in as before; for the programs that this one becomes. */
    void restore() const { ::pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }

private:
    static void take(int signal, sigset_t& taken)
    {
        struct sigaction action
        {};
        action.sa_sigaction = noteSignal;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        ::sigaction(signal, &action, nullptr);
        ::sigaddset(&taken, signal);
    }

    sigset_t m_former{};
    sigset_t m_whileWaiting{};
};

/** bubblewrap and the command that it runs. */
class Family
{
public:
    Family(const std::filesystem::path& bubblewrap, std::vector<std::string> words,
           const Signals& signals);

    /** Sends a signal to the command. */
    void send(int signal);
    /** Takes note of all processes that ended; the exit status when there is nothing left. */
    std::optional<int> reap();

private:
    pid_t command();
    bool isOrphanAlive();
    void note(pid_t process, int status);

    /** Whether processes whose parent ended become children of this one. */
    const bool m_adopts = ::prctl(PR_SET_CHILD_SUBREAPER, 1) == 0;
    FileDescriptor m_information; /**< Where bubblewrap writes which process the command is. */
    pid_t m_bubblewrap = -1;
    pid_t m_command = -1;
    std::optional<int> m_status;
    std::optional<int> m_bubblewrapKilled;
};

[[noreturn]] void become(const std::filesystem::path& program, std::vector<std::string>& words)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    ::execv(program.c_str(), pointers.data());
    std::cerr << "bsp-board: " << Failure("cannot run '" + program.string() + "'", errno).what()
              << std::endl;
    ::_exit(EXIT_FAILURE);
}

Family::Family(const std::filesystem::path& bubblewrap, std::vector<std::string> words,
               const Signals& signals)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw Failure("cannot make a pipe", errno);
    }
    m_information = FileDescriptor(ends[0]);
    const FileDescriptor writing(ends[1]);
    words.insert(words.begin(), {"bwrap", "--info-fd", std::to_string(writing.get())});
    m_bubblewrap = ::fork();
    if (m_bubblewrap == -1) {
        throw Failure("cannot start a process", errno);
    }
    if (m_bubblewrap == 0) {
        ::fcntl(writing.get(), F_SETFD, 0);
        signals.restore();
        become(bubblewrap, words);
    }
}

/** The command's process; -1 when bubblewrap ended before there was one. */
pid_t Family::command()
{
    if (!m_information.isOpen()) {
        return m_command;
    }
    std::string text;
    std::array<char, 256> buffer{};
    for (ssize_t count = 1; count > 0;) {
        count = ::read(m_information.get(), buffer.data(), buffer.size());
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    m_information = FileDescriptor();
    const std::string key = "\"child-pid\":";
    const std::size_t found = text.find(key);
    if (found != std::string::npos) {
        m_command = static_cast<pid_t>(std::strtol(text.c_str() + found + key.size(), nullptr, 10));
    }
    return m_command;
}

void Family::send(int signal)
{
    if (command() > 0) {
        ::kill(m_command, signal);
    }
}

void Family::note(pid_t process, int status)
{
    const bool killed = WIFSIGNALED(status);
    const int result = killed ? SignalBase + WTERMSIG(status) : WEXITSTATUS(status);
    if (process == m_bubblewrap && killed) {
        m_bubblewrapKilled = result;
    } else if (process == m_bubblewrap || process == command()) {
        m_status = result;
    }
}

std::optional<int> Family::reap()
{
    int status = 0;
    pid_t process = 0;
    while (!m_status && (process = ::waitpid(-1, &status, WNOHANG)) > 0) {
        note(process, status);
    }
    if (!m_status && m_bubblewrapKilled && !isOrphanAlive()) {
        return m_bubblewrapKilled;
    }
    return m_status;
}

/** Whether the command has lost bubblewrap and become a child of this process. */
bool Family::isOrphanAlive()
{
    return m_adopts && command() > 0 && ::kill(command(), 0) == 0;
}

} // namespace

int superviseBubblewrap(const std::filesystem::path& bubblewrap,
                        const std::vector<std::string>& words)
{
    const Signals signals;
    Family family(bubblewrap, words, signals);
    for (;;) {
        const int signal = signals.next();
        if (signal != SIGCHLD) {
            family.send(signal);
        } else if (const std::optional<int> status = family.reap()) {
            return *status;
        }
    }
}
