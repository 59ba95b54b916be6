#include "running/OldSystemCalls.h"

#include <array>
#include <cerrno>
#include <cstddef>

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace
{

/** From here on, on all machines, there are the calls of Linux 5.1 and later. */
constexpr unsigned int FirstNewNumber = 403;

#if defined(__x86_64__) && !defined(__ILP32__)
constexpr unsigned int Machine = AUDIT_ARCH_X86_64;
#elif defined(__i386__)
constexpr unsigned int Machine = AUDIT_ARCH_I386;
#elif defined(__aarch64__)
constexpr unsigned int Machine = AUDIT_ARCH_AARCH64;
#elif defined(__arm__)
constexpr unsigned int Machine = AUDIT_ARCH_ARM;
#else
#error "The filter of system calls does not know this kind of machine."
#endif

constexpr sock_filter statement(unsigned int code, unsigned int value)
{
    return {static_cast<unsigned short>(code), 0, 0, value};
}

constexpr sock_filter jump(unsigned int comparison, unsigned int value, unsigned char ifTrue,
                           unsigned char ifFalse)
{
    return {static_cast<unsigned short>(BPF_JMP | comparison | BPF_K), ifTrue, ifFalse, value};
}

} // namespace

int allowOldSystemCallsOnly()
{
    constexpr unsigned int load = BPF_LD | BPF_W | BPF_ABS;
    std::array<sock_filter, 9> filter{
        statement(load, offsetof(seccomp_data, arch)),
        jump(BPF_JEQ, Machine, 0, 6),
        statement(load, offsetof(seccomp_data, nr)),
        jump(BPF_JGE, FirstNewNumber, 3, 0),
        jump(BPF_JEQ, SYS_statx, 2, 0),
        jump(BPF_JEQ, SYS_renameat2, 1, 0),
        jump(BPF_JEQ, SYS_execveat, 0, 1),
        statement(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{filter.size(), filter.data()};
    const bool done = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                      ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    return done ? 0 : errno;
}
