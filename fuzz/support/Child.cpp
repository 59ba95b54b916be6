#include "Child.h"

#include "Expect.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

// The linker's names for libFuzzer's counters of this program.
extern "C" std::uint8_t __start___sancov_cntrs[]; // NOLINT(bugprone-reserved-identifier)
extern "C" std::uint8_t __stop___sancov_cntrs[];  // NOLINT(bugprone-reserved-identifier)

namespace fuzz
{

namespace
{

std::size_t numberOfCounters()
{
    return static_cast<std::size_t>(__stop___sancov_cntrs - __start___sancov_cntrs);
}

/** Memory that both processes see. */
std::uint8_t* sharedCounters()
{
    static auto* const shared = static_cast<std::uint8_t*>(::mmap(
        nullptr, numberOfCounters(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    expect("memory is to be had for the counters", shared != MAP_FAILED);
    return shared;
}

int memoryFile()
{
    const int fd = ::memfd_create("fuzz", MFD_CLOEXEC);
    expect("a file in memory is to be had", fd != -1);
    return fd;
}

std::string contentsOf(int fd)
{
    std::string bytes(static_cast<std::size_t>(::lseek(fd, 0, SEEK_END)), '\0');
    const ssize_t count = ::pread(fd, bytes.data(), bytes.size(), 0);
    expect("what the child wrote can be read", count == static_cast<ssize_t>(bytes.size()));
    ::close(fd);
    return bytes;
}

void writeAll(int fd, std::string_view bytes)
{
    expect("the child can write",
           ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
}

} // namespace

ChildResult inChild(const std::function<std::string()>& work)
{
    std::uint8_t* const counters = sharedCounters();
    const int answer = memoryFile();
    const int errors = memoryFile();
    const pid_t child = ::fork();
    expect("a child can be forked", child != -1);
    if (child == 0) {
        const int own = ::dup(STDERR_FILENO);
        ::dup2(errors, STDERR_FILENO);
        const std::string text = work();
        ::dup2(own, STDERR_FILENO);
        writeAll(answer, text);
        std::memcpy(counters, __start___sancov_cntrs, numberOfCounters());
        ::_exit(0);
    }
    int status = 0;
    expect("the child can be waited for", ::waitpid(child, &status, 0) == child);
    ChildResult result{contentsOf(errors), contentsOf(answer)};
    if (status != 0) {
        expectEqual("the child's end " + std::to_string(status) + " after", result.errors, "");
    }
    expectEqual("the child's end", status, 0);
    std::memcpy(__start___sancov_cntrs, counters, numberOfCounters());
    return result;
}

} // namespace fuzz
