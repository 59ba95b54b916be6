// old_system_calls PROGRAM [ARGUMENT...]: runs it with the system calls alone that proot knows.

#include "running/OldSystemCalls.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <unistd.h>

int main(int argc, char* argv[])
{
    constexpr int CannotRun = 126;
    if (argc < 2) {
        std::cerr << "usage: old_system_calls PROGRAM [ARGUMENT...]\n";
        return 2;
    }
    int error = allowOldSystemCallsOnly();
    if (error == 0) {
        ::execvp(argv[1], argv + 1);
        error = errno;
    }
    std::cerr << argv[1] << ": " << std::strerror(error) << '\n';
    return CannotRun;
}
