#include "DiagTest.h"

#include "Namespaces.h"
#include "OtherUser.h"
#include "Patterns.h"

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

StoreUser::StoreUser(const std::string& board, const std::vector<std::string>& words)
{
    int input[2] = {};
    int output[2] = {};
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    testsupport::Program program = testsupport::programAt(BSP_TEST_STORE_USER, words);
    program.environment = {{"BSP_BOARD_DIR", board}, {"QELTRACE_OUTPUT", "none"}};
    program.prepare = [&] {
        ::umask(0);
        ::dup2(input[0], STDIN_FILENO);
        ::dup2(output[1], STDOUT_FILENO);
        for (const int fd : {input[0], input[1], output[0], output[1]}) {
            ::close(fd);
        }
    };
    m_process = program.start();
    ::close(input[0]);
    ::close(output[1]);
    m_input = input[1];
    std::string answer;
    for (char byte = 0; ::read(output[0], &byte, 1) == 1 && byte != '\n';) {
        answer += byte;
    }
    ::close(output[0]);
    if (answer != "ready") {
        throw std::runtime_error("the user of the store does not answer");
    }
}

StoreUser::~StoreUser()
{
    kill();
}

void StoreUser::kill()
{
    if (m_process != 0) {
        ::kill(m_process, SIGKILL);
        wait();
    }
}

void StoreUser::killUnnoticed() const
{
    ::kill(m_process, SIGKILL);
    siginfo_t end{};
    ::waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED | WNOWAIT);
}

void StoreUser::end()
{
    wait();
}

void StoreUser::wait()
{
    ::close(m_input);
    testsupport::waitFor(m_process);
    m_process = 0;
}

void DiagTest::SetUp()
{
    fs::create_directory(board());
    fs::permissions(file("."), fs::perms(0755));
    fs::permissions("/tmp", fs::perms(01777));
    fs::permissions("/dev/shm", fs::perms(01777));
    write("eeprom", std::string("\x41\0\0\0\1\0\1\0", 8));
    write("top.dtcm0", std::string(32768, '\0'));
    fs::permissions(boardFile("top.dtcm0"), fs::perms(0666));
    setResetCause(1);
    for (const char* const led : {"yellow", "red", "green"}) {
        makeLed(led);
    }
}

testsupport::Program DiagTest::tool(const std::string& name, Words words) const
{
    testsupport::Program program = testsupport::tool(name, std::move(words));
    program.environment = {{"BSP_BOARD_DIR", board()}, {"QELTRACE_OUTPUT", "none"}};
    return program;
}

std::string DiagTest::noOtherUser()
{
    if (::geteuid() != 0) {
        return "only root can be another user";
    }
    if (!testsupport::canEmulatorBeUsedByOthers()) {
        return testsupport::NoEmulatorForOthers;
    }
    return testsupport::haveNamespaces()
               ? ""
               : std::string(testsupport::NoNamespaces) + "other users start nothing below proot";
}

testsupport::Program DiagTest::diagOfOrdinaryUser(Words words) const
{
    testsupport::Program program = diag(std::move(words));
    // Others may be unable to come to where it was built.
    const std::string copy = file("bsp-diag");
    fs::copy_file(program.path, copy, fs::copy_options::overwrite_existing);
    program.path = copy;
    program.prepare = testsupport::becomeOrdinaryUser;
    return program;
}

DiagTest::Words DiagTest::findings(const testsupport::Program& program) const
{
    const testsupport::Outcome outcome = program.run();
    EXPECT_EQ(outcome.err, "");
    Words lines;
    for (const std::string& line : testsupport::linesOf(normal(outcome.out))) {
        if (line != "nothing found" && line.rfind("not looked at: ", 0) != 0) {
            lines.push_back(line);
        }
    }
    EXPECT_EQ(outcome.status, lines.empty() ? 0 : 1) << outcome.out;
    return lines;
}

DiagTest::Words DiagTest::namesIn(const Words& lines)
{
    Words names;
    for (const std::string& line : lines) {
        names.push_back(line.substr(0, line.find(':')));
    }
    return names;
}

void DiagTest::makeLed(const std::string& name) const
{
    const std::string directory = "/sys/class/leds/" + name;
    fs::create_directories(directory);
    testsupport::writeFile(directory + "/trigger", "none [korvanta]\n");
    testsupport::writeFile(directory + "/korvanta_state", "steady_off\n");
}

void DiagTest::setResetCause(std::uint32_t cause) const
{
    std::string registers = word(cause);
    registers.resize(4096);
    write("top.sys_ctrl0", registers);
}

void DiagTest::putBlock(std::size_t number, std::string name, std::string data) const
{
    name.resize(16);
    data.resize(1008);
    std::string area = testsupport::readFile(boardFile("top.dtcm0"));
    area.replace((number - 1) * 1024, 1024, name + data);
    write("top.dtcm0", area);
}

std::string DiagTest::normal(std::string text) const
{
    for (std::size_t at = text.find(board()); at != std::string::npos; at = text.find(board())) {
        text.replace(at, board().size(), "BOARD");
    }
    text = testsupport::replaceMatches(
        text, "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} UTC", "TIME");
    return testsupport::replaceMatches(text, R"([[:alnum:]_-]+ \([0-9]+, since)",
                                       "PROCESS (N, since");
}
