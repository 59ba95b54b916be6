/**
 * @file
 * @brief The tool's commands on a board, and how each may end when something fails.
 */
#ifndef TESTS_FAULTS_COMMANDS_H
#define TESTS_FAULTS_COMMANDS_H

#include "TracedProcess.h"

#include <ostream>
#include <string>
#include <vector>

namespace faults
{

/** What a command prints and its exit status. */
struct Ending
{
    std::string out;
    std::string err; /**< With "..." at its end: it begins so. */
    int status;
};

struct Command
{
    std::string name;               /**< Of the test case. */
    std::vector<std::string> words; /**< The program's name, its function, its arguments. */
    std::string code;               /**< The EEPROM's bytes. */
    std::vector<Ending>
        endings; /**< The first when nothing fails, the others when something does. */
};

std::ostream& operator<<(std::ostream& stream, const Command& command);

/** The commands that ask the platform for something, and one of each other kind. */
const std::vector<Command>& commands();

/** Whether a program ended so; what the trace says of its own file does not count. */
bool endsSo(const ProgramRun& run, const Ending& ending);

/** How a program ended, for messages. */
std::string describe(const ProgramRun& run);

/** Makes the board of a command anew, nothing being left of what ran before. */
void makeBoard(const Command& command);

/** All files that commands may leave, without the trace. */
std::vector<std::string> leftFiles();

/** The messages since the board was made, as "CHANNEL LEVEL TEXT". */
std::vector<std::string> messages();

constexpr const char* BoardDirectory = "/tmp/board";
constexpr const char* TraceFile = "/tmp/trace";
constexpr const char* SettingsFile = "/tmp/board/settings";
constexpr const char* Settings = "FpgaVariant=TwoTdm\nRadiolinkMode=Rl5\n";

} // namespace faults

#endif
