/**
 * @file
 * @brief Does to the board what its command line says, and prints what came of it.
 *
 *     get KEY | set KEY VALUE | clear KEY | register DEVICE | fill FILE | list DIRECTORY
 */
#include "DDevIo.h"
#include "NxuConfig.h"

#include <cerrno>
#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using Arguments = std::vector<std::string>;

std::string truth(bool value)
{
    return value ? "true" : "false";
}

std::string get(const Arguments& arguments)
{
    try {
        return '[' + os::bsp::NxuConfig().get(arguments.at(0)) + ']';
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

std::string set(const Arguments& arguments)
{
    return truth(os::bsp::NxuConfig().set(arguments.at(0), arguments.at(1)));
}

std::string clear(const Arguments& arguments)
{
    return truth(os::bsp::NxuConfig().clear(arguments.at(0)));
}

std::string readRegister(const Arguments& arguments)
{
    const auto device = DDevIo::Factory::getInstance().createUnique(
        arguments.at(0), std::make_unique<DDevIo::PthreadMutex>(0));
    auto* const registers = dynamic_cast<DDevIo::Device<unsigned int>*>(device.get());
    unsigned int value = 0;
    return registers != nullptr && registers->read(0, value) == 0 ? std::to_string(value) : "none";
}

/** Writes to a file until the disk is full. */
std::string fill(const Arguments& arguments)
{
    const int fd = ::open(arguments.at(0).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    const std::string bytes(1024, 'x');
    while (::write(fd, bytes.data(), bytes.size()) > 0) {
    }
    const bool isFull = errno == ENOSPC;
    ::close(fd);
    return isFull ? "full" : "not full";
}

std::string list(const Arguments& arguments)
{
    std::string names;
    for (const auto& entry : std::filesystem::directory_iterator(arguments.at(0))) {
        names += entry.path().filename().string() + ' ';
    }
    return names.empty() ? "nothing" : names;
}

struct Command
{
    std::string (*run)(const Arguments&);
    std::size_t arguments;
};

const std::map<std::string, Command> Commands = {
    {"get", {get, 1}},   {"set", {set, 2}},  {"clear", {clear, 1}}, {"register", {readRegister, 1}},
    {"fill", {fill, 1}}, {"list", {list, 1}}};

} // namespace

int main(int argc, char** argv)
{
    const Arguments words(argv + 1, argv + argc);
    for (auto word = words.begin(); word != words.end();) {
        const Command& command = Commands.at(*word++);
        const auto end = word + static_cast<std::ptrdiff_t>(command.arguments);
        std::cout << command.run({word, end}) << '\n';
        word = end;
    }
    return 0;
}
