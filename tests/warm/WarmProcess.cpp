#include "WarmProcess.h"

#include "Program.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace
{

constexpr int InheritedFd = 9;

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

} // namespace

Board nxu4(const std::string& resetCause)
{
    return {{"FAKE_BOARD_CODE", "0 0 0 0 0 0 0 0"},
            {"FAKE_BOARD_PRODUCT_CODE", "1"},
            {"FAKE_RESET_CAUSE", resetCause}};
}

Board nxu5(int productCode)
{
    return {{"FAKE_BOARD_CODE", "0 1 0 0 0 0 0 0"},
            {"FAKE_BOARD_PRODUCT_CODE", std::to_string(productCode)}};
}

WarmProcess::WarmProcess(const Board& board, int inherited)
{
    const std::array<int, 2> commands = makePipe();
    const std::array<int, 2> answers = makePipe();
    testsupport::Program program = testsupport::programAt(BSP_TEST_WARM_PROGRAM);
    program.environment = board;
    program.prepare = [&] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(commands[0], STDIN_FILENO);
        ::dup2(answers[1], STDOUT_FILENO);
        if (inherited != -1) {
            ::dup2(inherited, InheritedFd);
        }
    };
    m_process = program.start();
    ::close(commands[0]);
    ::close(answers[1]);
    m_commands = commands[1];
    m_answers = answers[0];
}

WarmProcess::~WarmProcess()
{
    if (m_process != 0) {
        kill();
    }
    ::close(m_answers);
}

std::string WarmProcess::ask(const std::string& command)
{
    tell(command);
    return answer();
}

void WarmProcess::expect(const std::vector<std::pair<std::string, std::string>>& talk)
{
    for (const auto& [command, expected] : talk) {
        EXPECT_EQ(ask(command), expected) << command;
    }
}

void WarmProcess::tell(const std::string& command)
{
    const std::string line = command + '\n';
    if (::write(m_commands, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        throw std::runtime_error("cannot tell " + command);
    }
}

std::string WarmProcess::answer()
{
    std::string line;
    for (char byte = 0; ::read(m_answers, &byte, 1) == 1;) {
        if (byte == '\n') {
            return line;
        }
        line += byte;
    }
    return "no answer";
}

bool WarmProcess::answersWithin(int milliseconds)
{
    pollfd polled{m_answers, POLLIN, 0};
    return ::poll(&polled, 1, milliseconds) > 0;
}

int WarmProcess::exit()
{
    ::close(m_commands);
    const int status = testsupport::waitFor(m_process);
    m_process = 0;
    return status;
}

void WarmProcess::kill()
{
    ::kill(m_process, SIGKILL);
    ::close(m_commands);
    testsupport::waitFor(m_process);
    m_process = 0;
}
