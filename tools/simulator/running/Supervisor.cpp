#include "running/Supervisor.h"

#include "FileDescriptor.h"
#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/ExitStatus.h"
#include "running/Keeper.h"
#include "running/Signals.h"

#include <array>
#include <cerrno>
#include <utility>

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

int keepOrComplain(const Launch& launch, syscalls::FileDescriptor orders, const Signals& signals)
{
    try {
        return keep(launch, std::move(orders), signals);
    } catch (const std::exception& error) {
        complain(error.what());
        return NotStarted;
    }
}

/** The process that starts the command, in a process of its own so that it outlives this one. */
class Keeper
{
public:
    Keeper(const Launch& launch, const Signals& signals);

    /** Has a signal sent to the command. */
    void send(int signal) const;
    /** Whether it has ended, and how. */
    bool hasEnded(int& status) const;

private:
    syscalls::FileDescriptor m_orders;
    pid_t m_process = -1;
};

Keeper::Keeper(const Launch& launch, const Signals& signals)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw Failure("cannot make a pair of sockets", errno);
    }
    m_orders = syscalls::FileDescriptor(ends[0]);
    syscalls::FileDescriptor orders(ends[1]);
    m_process = ::fork();
    if (m_process == -1) {
        throw Failure("cannot start a process", errno);
    }
    if (m_process == 0) {
        m_orders = syscalls::FileDescriptor();
        ::_exit(keepOrComplain(launch, std::move(orders), signals));
    }
}

void Keeper::send(int signal) const
{
    const auto order = static_cast<unsigned char>(signal);
    ::send(m_orders.get(), &order, sizeof order, MSG_NOSIGNAL);
}

bool Keeper::hasEnded(int& status) const
{
    int waitStatus = 0;
    bool ended = false;
    for (pid_t process = 0; (process = ::waitpid(-1, &waitStatus, WNOHANG)) > 0;) {
        if (process == m_process) {
            status = exitStatus(waitStatus);
            ended = true;
        }
    }
    return ended;
}

} // namespace

int supervise(const Launch& launch)
{
    const Signals signals;
    const Keeper keeper(launch, signals);
    for (int status = 0;;) {
        const int signal = signals.next();
        if (signal != SIGCHLD) {
            keeper.send(signal);
        } else if (keeper.hasEnded(status)) {
            return status;
        }
    }
}
