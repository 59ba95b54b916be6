#include "running/Keeper.h"

#include "report/Complaint.h"
#include "report/Failure.h"
#include "running/ExitStatus.h"
#include "running/Starter.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/** This process's children, also those that ended and have not been waited for. */
std::vector<pid_t> children()
{
    const std::string self = std::to_string(::getpid());
    std::ifstream list("/proc/" + self + "/task/" + self + "/children");
    return {std::istream_iterator<pid_t>(list), {}};
}

/** What runs a command, and the command. */
class Family
{
public:
    Family(const Launch& launch, const Signals& signals)
        : m_launch(launch), m_started(start(launch, signals))
    {
        if (m_started.reports.isOpen()) {
            ::fcntl(m_started.reports.get(), F_SETFL, O_NONBLOCK);
        } else {
            m_command = m_started.process;
        }
    }

    const syscalls::FileDescriptor& reports() const { return m_started.reports; }
    /** Reads what there is in the reports. */
    void takeReports();
    /** Takes note of all processes that ended. */
    void reap();
    /** Sends a signal to the command, now or as soon as there is one. */
    void send(int signal);
    /** The exit status when the command has ended, or what runs it without it. */
    std::optional<int> status();
    /** Kills everything. */
    void kill();

private:
    std::optional<int> reported(const std::string& key) const;
    int statusWithoutReport() const;
    void letProotEnd() const;
    void waitForCommand();

    const Launch& m_launch;
    /** Whether processes whose parent ended become children of this one. */
    const bool m_adopts = ::prctl(PR_SET_CHILD_SUBREAPER, 1) == 0;
    Started m_started;
    std::string m_reportText;
    pid_t m_command = -1;
    std::vector<int> m_unsent;
    std::optional<int> m_commandsEnd; /**< As waitpid tells it. */
    std::optional<int> m_startedsEnd;
};

std::optional<int> Family::reported(const std::string& key) const
{
    const std::string mark = '"' + key + "\":";
    const std::size_t found = m_reportText.find(mark);
    if (found == std::string::npos || m_reportText.find('\n', found) == std::string::npos) {
        return std::nullopt;
    }
    return static_cast<int>(std::strtol(m_reportText.c_str() + found + mark.size(), nullptr, 10));
}

void Family::takeReports()
{
    std::array<char, 256> buffer{};
    ssize_t count = 0;
    while (m_started.reports.isOpen() &&
           (count = ::read(m_started.reports.get(), buffer.data(), buffer.size())) > 0)
    {
        m_reportText.append(buffer.data(), static_cast<std::size_t>(count));
    }
    if (count == 0) {
        m_started.reports = syscalls::FileDescriptor();
    }
    if (m_command == -1) {
        m_command = reported("child-pid").value_or(-1);
        for (const int signal : std::exchange(m_unsent, {})) {
            send(signal);
        }
    }
}

void Family::reap()
{
    int status = 0;
    for (pid_t process = 0; (process = ::waitpid(-1, &status, WNOHANG)) > 0;) {
        if (process == m_started.process) {
            m_startedsEnd = status;
        } else if (process == m_command) {
            m_commandsEnd = status;
        }
    }
}

void Family::send(int signal)
{
    if (m_command > 0) {
        ::kill(m_command, signal);
    } else {
        m_unsent.push_back(signal);
    }
}

std::optional<int> Family::status()
{
    takeReports();
    if (m_launch.through == Launch::Through::Proot) {
        if (const std::optional<int> status = reported("exit-code")) {
            letProotEnd();
            return status;
        }
    }
    if (m_commandsEnd) {
        return exitStatus(*m_commandsEnd);
    }
    if (!m_startedsEnd) {
        return std::nullopt;
    }
    // A signal that ended bubblewrap has left the command to this process.
    if (WIFSIGNALED(*m_startedsEnd) && m_adopts && m_command > 0 && ::kill(m_command, 0) == 0) {
        return std::nullopt;
    }
    return statusWithoutReport();
}

int Family::statusWithoutReport() const
{
    const int status = exitStatus(*m_startedsEnd);
    switch (m_launch.through) {
    case Launch::Through::Bubblewrap:
        // It has complained itself.
        return status == EXIT_FAILURE && !reported("exit-code") ? NotStarted : status;
    case Launch::Through::Proot:
        if (m_command == -1 && !WIFSIGNALED(*m_startedsEnd)) {
            complain(m_launch.refusal + firstLine(m_started.complaints) + ')');
            return NotStarted;
        }
        return status;
    case Launch::Through::Nothing:
        break;
    }
    return status;
}

/** proot has something to tidy up; but it stays as long as anything runs in the background. */
void Family::letProotEnd() const
{
    while (!m_startedsEnd && children() == std::vector<pid_t>{m_started.process}) {
        siginfo_t ended{};
        ::waitid(P_ALL, 0, &ended, WEXITED);
    }
}

void Family::kill()
{
    const bool isProot = m_launch.through == Launch::Through::Proot;
    if (isProot) {
        waitForCommand();
    }
    do {
        for (const pid_t process : children()) {
            // At this signal proot kills all that it runs and removes its temporary files.
            const bool canTidyUp = isProot && process == m_started.process && m_command != -1;
            ::kill(process, canTidyUp ? SIGQUIT : SIGKILL);
            ::kill(process, SIGCONT);
        }
    } while (::waitpid(-1, nullptr, 0) > 0);
}

/** Gives proot the time to prepare itself. */
void Family::waitForCommand()
{
    constexpr int limit = 2000; // milliseconds; it needs ten
    pollfd reports{m_started.reports.get(), POLLIN, 0};
    if (m_command == -1 && ::poll(&reports, 1, limit) > 0) {
        takeReports();
    }
}

} // namespace

int keep(const Launch& launch, syscalls::FileDescriptor orders, const Signals& signals)
{
    Family family(launch, signals);
    for (;;) {
        std::array<pollfd, 2> files{pollfd{orders.get(), POLLIN, 0},
                                    pollfd{family.reports().get(), POLLIN, 0}};
        ::ppoll(files.data(), files.size(), nullptr, &signals.endsOfChildren());
        if (files[0].revents != 0) {
            unsigned char signal = 0;
            if (::read(orders.get(), &signal, sizeof signal) != 1) {
                family.kill();
                return SignalBase + SIGKILL;
            }
            family.send(signal);
        }
        family.reap();
        if (const std::optional<int> status = family.status()) {
            return *status;
        }
    }
}
