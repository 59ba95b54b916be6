#ifndef TESTS_PLATFORM_SANDBOX_H
#define TESTS_PLATFORM_SANDBOX_H

#include "Namespaces.h"
#include "Program.h"

namespace testsupport
{

/** A program of the tests that another one starts, given that one's words. */
inline Program startedBy(std::vector<std::string> starter, const std::string& path,
                         const std::vector<std::string>& arguments)
{
    Program program{};
    program.foreign = true;
    program.path = starter.front();
    program.arguments.assign(starter.begin() + 1, starter.end());
    auto& words = program.arguments;
    const std::vector<std::string> emulator = testsupport::emulator();
    words.insert(words.end(), emulator.begin(), emulator.end());
    words.push_back(path);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return program;
}

/**
 * A program of the tests, run with parts of the file system changed.
 *
 * @param mounts  what bwrap is to change, as its command line has it
 */
inline Program sandboxed(const std::vector<std::string>& mounts, const std::string& path,
                         const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{"bwrap", "--dev-bind", "/", "/"};
    words.insert(words.end(), mounts.begin(), mounts.end());
    words.emplace_back("--");
    return startedBy(words, path, arguments);
}

/** A program of the tests, run with that file as its /dev/log. */
inline Program withSystemLog(const std::string& log, const std::string& path,
                             const std::vector<std::string>& arguments)
{
    return haveNamespaces()
               ? sandboxed({"--dev", "/dev", "--bind", log, "/dev/log"}, path, arguments)
               : startedBy({"proot", "-b", log + ":/dev/log"}, path, arguments);
}

/** A program of the tests, run without a /dev/log; proot can only show one that takes nothing. */
inline Program withoutSystemLog(const std::string& path, const std::vector<std::string>& arguments)
{
    return haveNamespaces() ? sandboxed({"--dev", "/dev"}, path, arguments)
                            : withSystemLog("/dev/null", path, arguments);
}

} // namespace testsupport

#endif
