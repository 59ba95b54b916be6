#include "SystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>

#include <fcntl.h>
#include <sys/types.h>

namespace
{

SystemCalls* current = nullptr;

int openScripted(const char* path, int flags)
{
    EXPECT_EQ(flags & ~O_CLOEXEC, O_WRONLY) << path;
    SystemCalls& calls = *SystemCalls::active();
    return calls.call(calls.opens, std::string("open ") + path);
}

/** The third argument of open, which is there only when a file may be created. */
mode_t modeOf(int flags, va_list arguments)
{
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

SystemCalls::SystemCalls()
{
    current = this;
}

SystemCalls::~SystemCalls()
{
    current = nullptr;
    EXPECT_TRUE(opens.empty() && writes.empty() && closes.empty()) << "calls that never came";
}

SystemCalls* SystemCalls::active()
{
    return current;
}

int SystemCalls::call(std::deque<Scripted>& script, const std::string& text)
{
    calls.push_back(text);
    if (script.empty()) {
        ADD_FAILURE() << "unexpected call: " << text;
        errno = ENOSYS;
        return -1;
    }
    const Scripted scripted = script.front();
    script.pop_front();
    if (scripted.result == -1) {
        errno = scripted.error;
    }
    return scripted.result;
}

extern "C"
{
    // NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
    int __real_open(const char* path, int flags, ...);
    int __real_open64(const char* path, int flags, ...);
    ssize_t __real_write(int fd, const void* data, size_t size);
    int __real_close(int fd);

    int __wrap_open(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = modeOf(flags, arguments);
        va_end(arguments);
        return SystemCalls::active() != nullptr ? openScripted(path, flags)
                                                : __real_open(path, flags, mode);
    }

    int __wrap_open64(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = modeOf(flags, arguments);
        va_end(arguments);
        return SystemCalls::active() != nullptr ? openScripted(path, flags)
                                                : __real_open64(path, flags, mode);
    }

    ssize_t __wrap_write(int fd, const void* data, size_t size)
    {
        SystemCalls* calls = SystemCalls::active();
        if (calls == nullptr) {
            return __real_write(fd, data, size);
        }
        return calls->call(calls->writes, "write " + std::to_string(fd) + ' ' +
                                              std::string(static_cast<const char*>(data), size));
    }

    int __wrap_close(int fd)
    {
        SystemCalls* calls = SystemCalls::active();
        return calls == nullptr ? __real_close(fd)
                                : calls->call(calls->closes, "close " + std::to_string(fd));
    }
    // NOLINTEND(bugprone-reserved-identifier)
}
