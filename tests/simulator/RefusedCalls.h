#ifndef TESTS_SIMULATOR_REFUSEDCALLS_H
#define TESTS_SIMULATOR_REFUSEDCALLS_H

#include <cerrno>
#include <cstddef>
#include <vector>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

/** Makes system calls fail for this process and all that it starts, as container engines do. */
inline void refuseCalls(const std::vector<unsigned int>& calls)
{
    const auto statement = [](unsigned int code, unsigned int value) {
        return sock_filter{static_cast<unsigned short>(code), 0, 0, value};
    };
    std::vector<sock_filter> filter{
        statement(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const unsigned int call : calls) {
        filter.push_back({BPF_JMP | BPF_JEQ | BPF_K, 0, 1, call});
        filter.push_back(statement(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM));
    }
    filter.push_back(statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
    {
        ::_exit(99);
    }
}

inline void refuseMounts()
{
    refuseCalls({SYS_mount});
}

inline void refuseTracing()
{
    refuseCalls({SYS_ptrace});
}

#endif
