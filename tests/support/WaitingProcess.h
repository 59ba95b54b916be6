#ifndef TESTS_SUPPORT_WAITINGPROCESS_H
#define TESTS_SUPPORT_WAITINGPROCESS_H

#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <thread>

#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>

namespace testsupport
{

/** Whether a process of one thread waits for a semaphore or a mutex, however long that takes. */
inline bool isWaitingWithoutEnd(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/syscall");
    long number = -1;
    std::string word;
    std::string timeout;
    file >> number >> word >> word >> word >> timeout;
    return number == SYS_futex && timeout == "0x0";
}

/** Sleeps between two looks at a process, at first shortly. */
inline void sleepAfterLook(int looks)
{
    std::this_thread::sleep_for(std::chrono::microseconds(looks < 50 ? 50 : 2000));
}

constexpr int WaitsForEver = -1;

/**
 * Waits for the end of a process that nobody else helps on: its exit status, 128 + N after signal
 * N, or WaitsForEver, when it is killed.
 */
inline int endOf(pid_t process)
{
    int status = 0;
    for (int looks = 0; ::waitpid(process, &status, WNOHANG) == 0; ++looks) {
        if (isWaitingWithoutEnd(process)) {
            ::kill(process, SIGKILL);
            ::waitpid(process, &status, 0);
            return WaitsForEver;
        }
        sleepAfterLook(looks);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace testsupport

#endif
