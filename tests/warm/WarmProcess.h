/**
 * @file
 * @brief Talks to a process that runs WarmProgram.
 */
#ifndef TESTS_WARM_WARMPROCESS_H
#define TESTS_WARM_WARMPROCESS_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

/** The board of a process, as its environment describes it. */
using Board = std::map<std::string, std::string>;

/** A board with a reset register. */
Board nxu4(const std::string& resetCause);
/** A board of another platform. */
Board nxu5(int productCode);

/** A running process; it is killed at the end of the scope, if it has not been told to exit. */
class WarmProcess
{
public:
    /** Starts it; it finds @p inherited at descriptor 9. */
    explicit WarmProcess(const Board& board, int inherited = -1);
    ~WarmProcess();
    WarmProcess(const WarmProcess&) = delete;
    WarmProcess& operator=(const WarmProcess&) = delete;

    /** Gives a command and waits for the answer. */
    std::string ask(const std::string& command);
    /** Gives commands one after the other, and expects these answers. */
    void expect(const std::vector<std::pair<std::string, std::string>>& talk);
    void tell(const std::string& command);
    std::string answer();
    /** Whether the answer to the last command comes within that time. */
    bool answersWithin(int milliseconds);

    /** Lets it return from main; its exit status. */
    int exit();
    void kill();

private:
    pid_t m_process;
    int m_commands = -1;
    int m_answers = -1;
};

#endif
