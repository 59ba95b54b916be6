/**
 * @file
 * @brief Runs programs and looks at what they write and how they end.
 */
#ifndef TESTS_SUPPORT_PROGRAM_H
#define TESTS_SUPPORT_PROGRAM_H

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <sys/types.h>

namespace testsupport
{

/** What a program wrote and how it ended. */
struct Outcome
{
    std::string out;
    std::string err;
    int status; /**< Exit status; 128 + N after signal N. */
};

inline bool operator==(const Outcome& left, const Outcome& right)
{
    return left.out == right.out && left.err == right.err && left.status == right.status;
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

/** It prints that, complains of nothing and succeeds. */
inline Outcome answer(const std::string& out = "")
{
    return {out, "", 0};
}

/** It prints nothing but that complaint. */
inline Outcome refusal(const std::string& err, int status = 1)
{
    return {"", err, status};
}

/** How to start a program. */
struct Program
{
    std::string path;                               /**< The file to run. */
    std::vector<std::string> arguments;             /**< The words after the first. */
    std::optional<std::string> name;                /**< First word, when it is not the path. */
    std::map<std::string, std::string> environment; /**< Added to this process's environment. */
    std::string directory;                          /**< Working directory, when not this one. */
    bool foreign = false; /**< Built for the machine that runs the tests: needs no emulator. */
    bool merged = false;  /**< Standard error goes where standard output goes. */
    std::function<void()> prepare; /**< Called in the new process before the program starts. */

    /** Runs it to its end. */
    Outcome run() const;
    /** Starts it with this process's streams; the caller waits for it. */
    pid_t start() const;
};

/** Words to put in front of a program that this machine cannot run by itself; none if it can. */
std::vector<std::string> emulator();

/** A program of this project's build, such as "bsp" or "bsp-board". */
Program tool(const std::string& name, std::vector<std::string> arguments = {});

/** The program of that path. */
Program programAt(const std::string& path, std::vector<std::string> arguments = {});

/** The same program; that, instead of what was to be done, is done in its process before it starts.
 */
Program prepared(Program program, std::function<void()> prepare);

/** A row of a golden table: what a program is called with, and all that comes of it. */
struct Golden
{
    std::vector<std::string> arguments;
    Outcome outcome;
    std::map<std::string, std::string> environment = {}; /**< Added to the program's. */
};

/** Runs the program for each row of the table and expects all its outcome. */
void expectGolden(const Program& program, const std::vector<Golden>& table);

/** What a program prints, of which is expected that it complains of nothing and succeeds. */
std::string outputOf(const Program& program);

/** Starts a copy of this process for that work alone; it ends with 0 if the work returns true. */
pid_t startCopy(const std::function<bool()>& work);

/** Whether that work returns true in a copy of this process. */
bool holdsInCopy(const std::function<bool()>& work);

/** Waits for a process's end: its exit status, or 128 + N after signal N. */
int waitFor(pid_t process);

} // namespace testsupport

#endif
