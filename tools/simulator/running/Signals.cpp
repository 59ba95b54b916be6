#include "running/Signals.h"

#include <array>
#include <cstddef>

#include <unistd.h>

namespace
{

constexpr int Taken[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2};

/** Signals that came, by number; a handler reaches nothing but globals. */
std::array<volatile std::sig_atomic_t, NSIG> noted{};

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

void take(int signal, sigset_t& taken)
{
    struct sigaction action
    {};
    action.sa_sigaction = noteSignal;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    ::sigaction(signal, &action, nullptr);
    ::sigaddset(&taken, signal);
}

} // namespace

Signals::Signals()
{
    sigset_t taken{};
    ::sigemptyset(&taken);
    for (const int signal : Taken) {
        struct sigaction current
        {};
        ::sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN) {
            take(signal, taken);
        }
    }
    take(SIGCHLD, taken);
    ::pthread_sigmask(SIG_BLOCK, &taken, &m_former);
    ::pthread_sigmask(SIG_BLOCK, nullptr, &m_endsOfChildren);
    ::sigdelset(&m_endsOfChildren, SIGCHLD);
    m_whileWaiting = m_former;
    ::sigdelset(&m_whileWaiting, SIGCHLD);
}

int Signals::next() const
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

void Signals::restore() const
{
    ::pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
}
