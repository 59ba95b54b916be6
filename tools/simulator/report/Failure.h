#ifndef TOOLS_BOARD_FAILURE_H
#define TOOLS_BOARD_FAILURE_H

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

/** What was asked for could not be done. */
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
    /** A failed system call: "<what>: <text of the error>". */
    Failure(const std::string& what, int error)
        : std::runtime_error(what + ": " + std::generic_category().message(error))
    {}
};

/** The words of the command line make no sense. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

#endif
