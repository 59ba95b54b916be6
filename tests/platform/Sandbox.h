#ifndef TESTS_PLATFORM_SANDBOX_H
#define TESTS_PLATFORM_SANDBOX_H

#include "Program.h"

#include <iterator>
#include <sstream>

namespace testsupport
{

/**
 * A program of the tests, run with parts of the file system changed.
 *
 * @param mounts  what bwrap is to change, as its command line has it
 */
inline Program sandboxed(const std::vector<std::string>& mounts, const std::string& path,
                         const std::vector<std::string>& arguments)
{
    Program program{};
    program.path = "bwrap";
    program.foreign = true;
    program.arguments = {"--dev-bind", "/", "/"};
    auto& words = program.arguments;
    words.insert(words.end(), mounts.begin(), mounts.end());
    words.emplace_back("--");
    std::istringstream emulator(BSP_TEST_EMULATOR);
    words.insert(words.end(), std::istream_iterator<std::string>(emulator), {});
    words.push_back(path);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return program;
}

} // namespace testsupport

#endif
