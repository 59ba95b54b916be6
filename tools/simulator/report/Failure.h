#ifndef TOOLS_SIMULATOR_REPORT_FAILURE_H
#define TOOLS_SIMULATOR_REPORT_FAILURE_H

#include "ErrnoText.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>

/** What was asked for could not be done. */
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
    /** A failed system call: "<what>: <text of the error>". */
    Failure(const std::string& what, int error)
        : std::runtime_error(what + ": " + syscalls::errnoText(error).c_str())
    {}
    /** A failed call that names no file has looked for the working directory. */
    explicit Failure(const std::filesystem::filesystem_error& error)
        : Failure(error.path1().empty() ? "cannot find the working directory"
                                        : "cannot use '" + error.path1().string() + "'",
                  error.code().value())
    {}
};

/** The words of the command line make no sense. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

#endif
