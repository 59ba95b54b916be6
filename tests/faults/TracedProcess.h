/**
 * @file
 * @brief Runs a program whose system calls are listed, fail as told, or end it.
 */
#ifndef TESTS_FAULTS_TRACEDPROCESS_H
#define TESTS_FAULTS_TRACEDPROCESS_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace faults
{

/**
 * A system call of the program, between its first F_GETFD of descriptor 0 and its end. Those of the
 * heap are left out: how many there are depends on where it lies.
 */
struct Call
{
    long number;
    std::vector<long> arguments;
    long result;
};

/** What is done to one call. */
struct Fault
{
    enum Kind
    {
        Fails,        /**< It is not made, and fails with the errno value. */
        FailsDone,    /**< It is made, and fails all the same. */
        GivesNothing, /**< It is not made, and gives 0. */
        IsShort,      /**< Its third argument, a size, becomes 1. */
        Kills         /**< The process is killed instead. */
    };

    std::size_t call; /**< Index among the calls. */
    Kind kind;
    int error; /**< For Fails and FailsDone. */
};

/** What a program did. */
struct ProgramRun
{
    std::string out;
    std::string err;
    int status; /**< Exit status; 128 + N after signal N. */
    std::vector<Call> calls;
    std::vector<std::string> openFiles; /**< Open when it exited. */
    long pageFaults; /**< Of its whole life, without those that waited for a disk. */
};

constexpr std::chrono::milliseconds LongestRun = std::chrono::seconds(20);

/** Runs the program, of which only what it prints and its end is looked at; SIGALRM ends it. */
ProgramRun run(const std::vector<std::string>& words, std::chrono::milliseconds limit = LongestRun);

/** Runs the program with that fault, if any, and lists its calls. */
ProgramRun runWatched(const std::vector<std::string>& words, const std::optional<Fault>& fault);

} // namespace faults

#endif
