#include "Program.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport
{

namespace
{

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

struct CommandLine
{
    std::string path;
    std::vector<std::string> words;
};

CommandLine commandLine(const Program& program)
{
    const std::string name = program.name.value_or(program.path);
    CommandLine result{program.path, {name}};
    const std::vector<std::string> wrapper = emulator();
    if (!program.foreign && !wrapper.empty()) {
        result.path = wrapper.front();
        result.words = wrapper;
        result.words.insert(result.words.end(), {"-0", name, program.path});
    }
    result.words.insert(result.words.end(), program.arguments.begin(), program.arguments.end());
    return result;
}

/** Turns this process into the program; called between fork and exec. */
[[noreturn]] void become(const Program& program, const CommandLine& line)
{
    for (const auto& [name, value] : program.environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    if (!program.directory.empty() && ::chdir(program.directory.c_str()) != 0) {
        ::_exit(125);
    }
    std::vector<char*> words;
    for (const std::string& word : line.words) {
        words.push_back(const_cast<char*>(
            word.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast): execv's interface
    }
    words.push_back(nullptr);
    if (program.prepare) {
        program.prepare();
    }
    ::execvp(line.path.c_str(), words.data());
    ::_exit(126);
}

/** Moves what a descriptor has to say into a text. Returns false at its end. */
bool drain(int fd, std::string& text)
{
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(fd, buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return count > 0 || (count == -1 && errno == EINTR);
}

void drainBoth(std::array<int, 2> fds, std::array<std::string*, 2> texts)
{
    std::array<pollfd, 2> polled{pollfd{fds[0], POLLIN, 0}, pollfd{fds[1], POLLIN, 0}};
    while (polled[0].fd >= 0 || polled[1].fd >= 0) {
        if (::poll(polled.data(), polled.size(), -1) == -1 && errno != EINTR) {
            fail("poll");
        }
        for (std::size_t i = 0; i < polled.size(); ++i) {
            if (polled[i].fd >= 0 && polled[i].revents != 0 && !drain(polled[i].fd, *texts[i])) {
                ::close(polled[i].fd);
                polled[i].fd = -1;
            }
        }
    }
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
{
    return stream << "out: " << outcome.out << "err: " << outcome.err
                  << "status: " << outcome.status;
}

std::vector<std::string> emulator()
{
    // Programs may run on another machine than the one of the build.
    const char* const other = std::getenv("BSP_TEST_EMULATOR");
    std::istringstream words(other == nullptr ? BSP_TEST_EMULATOR : other);
    std::vector<std::string> result;
    for (std::string word; std::getline(words, word, '|');) {
        result.push_back(word);
    }
    return result;
}

pid_t Program::start() const
{
    const CommandLine line = commandLine(*this);
    const pid_t process = ::fork();
    if (process == -1) {
        fail("fork");
    }
    if (process == 0) {
        become(*this, line);
    }
    return process;
}

Outcome Program::run() const
{
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    if (::pipe2(out.data(), O_CLOEXEC) != 0 || ::pipe2(err.data(), O_CLOEXEC) != 0) {
        fail("pipe2");
    }
    Program redirected = *this;
    redirected.prepare = [&] {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(merged ? out[1] : err[1], STDERR_FILENO);
        if (prepare) {
            prepare();
        }
    };
    const pid_t process = redirected.start();
    ::close(out[1]);
    ::close(err[1]);
    Outcome outcome{};
    drainBoth({out[0], err[0]}, {&outcome.out, &outcome.err});
    outcome.status = waitFor(process);
    return outcome;
}

Program tool(const std::string& name, std::vector<std::string> arguments)
{
    return programAt(std::string(BSP_TEST_BIN_DIR) + '/' + name, std::move(arguments));
}

Program programAt(const std::string& path, std::vector<std::string> arguments)
{
    Program program{};
    program.path = path;
    program.arguments = std::move(arguments);
    return program;
}

Program prepared(Program program, std::function<void()> prepare)
{
    program.prepare = std::move(prepare);
    return program;
}

void expectGolden(const Program& program, const std::vector<Golden>& table)
{
    for (const Golden& row : table) {
        Program called = program;
        called.arguments = row.arguments;
        called.environment.insert(row.environment.begin(), row.environment.end());
        EXPECT_EQ(called.run(), row.outcome)
            << testing::PrintToString(row.arguments) << testing::PrintToString(row.environment);
    }
}

std::string outputOf(const Program& program)
{
    const Outcome outcome = program.run();
    EXPECT_EQ(outcome, answer(outcome.out)) << testing::PrintToString(program.arguments);
    return outcome.out;
}

pid_t startCopy(const std::function<bool()>& work)
{
    const pid_t process = ::fork();
    if (process == 0) {
        ::_exit(work() ? 0 : 1);
    }
    return process;
}

bool holdsInCopy(const std::function<bool()>& work)
{
    return waitFor(startCopy(work)) == 0;
}

int waitFor(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) == -1) {
        if (errno != EINTR) {
            fail("waitpid");
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace testsupport
