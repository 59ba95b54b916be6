#include "PlausibleFaults.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace faults
{

namespace
{

struct CallRow
{
    long number;
    const char* name;
    Fault::Kind kind; /**< How it fails. */
    std::vector<int> errors;
    bool countsBytes; /**< It can do less than it was asked for, or nothing. */
};

/** A call that is not here is not made to fail: it cannot, or its failure is the C library's. */
const std::vector<CallRow>& callRows()
{
    static const std::vector<CallRow> table{
        {SYS_openat,
         "openat",
         Fault::Fails,
         {ENOENT, EACCES, EINTR, EMFILE, ENFILE, ENOMEM, EIO, ELOOP},
         false},
        {SYS_read, "read", Fault::Fails, {EIO, EINTR, EAGAIN, EISDIR}, true},
        {SYS_pread64, "pread", Fault::Fails, {EIO, EINTR}, true},
        {SYS_write, "write", Fault::Fails, {EIO, ENOSPC, EINTR, EAGAIN}, true},
        {SYS_lseek, "lseek", Fault::Fails, {EINVAL, ESPIPE, EOVERFLOW}, false},
        {SYS_newfstatat, "fstat", Fault::Fails, {EIO, EACCES, ENOMEM, ENOENT}, false},
        {SYS_mmap, "mmap", Fault::Fails, {ENOMEM, EACCES, EAGAIN}, false},
        {SYS_munmap, "munmap", Fault::FailsDone, {EINVAL}, false},
        {SYS_ftruncate, "ftruncate", Fault::Fails, {EIO, EINVAL, EINTR}, false},
        {SYS_fcntl, "fcntl", Fault::Fails, {EINTR, EBADF, EMFILE, ENOLCK, EAGAIN}, false},
        {SYS_flock, "flock", Fault::Fails, {EINTR, ENOLCK, EWOULDBLOCK}, false},
        {SYS_unlink, "unlink", Fault::Fails, {EACCES, EROFS, ENOENT, EIO}, false},
        {SYS_unlinkat, "unlinkat", Fault::Fails, {EACCES, EROFS, ENOENT, EIO}, false},
        {SYS_renameat, "renameat", Fault::Fails, {EIO, ENOSPC, EACCES, EXDEV}, false},
        {SYS_link, "link", Fault::Fails, {EEXIST, EPERM, ENOSPC}, false},
        {SYS_linkat, "linkat", Fault::Fails, {EEXIST, EPERM, ENOSPC, ENOENT}, false},
        {SYS_fsync, "fsync", Fault::Fails, {EIO, ENOSPC, EINVAL}, false},
        {SYS_access, "access", Fault::Fails, {ENOENT, EACCES, ENOMEM}, false},
        {SYS_close, "close", Fault::FailsDone, {EINTR, EIO}, false},
        {SYS_clock_nanosleep, "nanosleep", Fault::Fails, {EINTR}, false},
        {SYS_fchown, "fchown", Fault::Fails, {EPERM, EIO}, false},
        {SYS_fchmod, "fchmod", Fault::Fails, {EPERM, EIO}, false},
        {SYS_readlink, "readlink", Fault::Fails, {EACCES, EIO}, false},
        {SYS_sysinfo, "sysinfo", Fault::Fails, {EFAULT}, false},
        {SYS_getcwd, "getcwd", Fault::Fails, {ENOENT, EACCES}, false},
    };
    return table;
}

const CallRow* findRow(long number)
{
    for (const CallRow& row : callRows()) {
        if (row.number == number) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

std::vector<Fault> plausibleFaults(const std::vector<Call>& calls)
{
    std::vector<Fault> faults;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const CallRow* row = findRow(calls[i].number);
        // sem_open would leave the name, with nobody told of it.
        const bool isInSemOpen =
            i > 0 && calls[i - 1].number == SYS_link && calls[i].number == SYS_newfstatat;
        const bool isLook = calls[i].number == SYS_fcntl && calls[i].arguments[1] == F_GETFD;
        if (row == nullptr || isInSemOpen || isLook) {
            continue;
        }
        for (const int error : row->errors) {
            faults.push_back({i, row->kind, error});
        }
        if (row->countsBytes) {
            faults.push_back({i, Fault::IsShort, 0});
            faults.push_back({i, Fault::GivesNothing, 0});
        }
    }
    return faults;
}

bool writesToStream(const Call& call)
{
    return call.number == SYS_write &&
           (call.arguments[0] == STDOUT_FILENO || call.arguments[0] == STDERR_FILENO);
}

bool removesName(const Call& call)
{
    return call.number == SYS_unlink || call.number == SYS_unlinkat;
}

std::string describe(const Call& call, const Fault& fault)
{
    const CallRow* row = findRow(call.number);
    const std::string name = row == nullptr ? std::to_string(call.number) : row->name;
    const std::string what = "call " + std::to_string(fault.call) + ", " + name;
    switch (fault.kind) {
    case Fault::Fails:
        return what + " fails: " + std::strerror(fault.error);
    case Fault::FailsDone:
        return what + " is done and fails: " + std::strerror(fault.error);
    case Fault::GivesNothing:
        return what + " gives 0";
    case Fault::IsShort:
        return what + " is short";
    case Fault::Kills:
        return what + " is the end";
    }
    return what;
}

} // namespace faults
