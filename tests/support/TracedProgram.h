/**
 * @file
 * @brief Programs that stop at their system calls, for looking at them or doing something then.
 */
#ifndef TESTS_SUPPORT_TRACEDPROGRAM_H
#define TESTS_SUPPORT_TRACEDPROGRAM_H

#include "Program.h"

#include <functional>

namespace testsupport
{

/** Whether programs can be stopped here: not those that an emulator runs. */
bool canTrace();

/** A program that is traced from its first system call on. */
class TracedProgram
{
public:
    /** Starts it; it waits. @throws std::exception when it cannot be traced */
    explicit TracedProgram(Program program);

    /** Lets it go on to where a system call begins or ends; false when it ends instead. */
    bool goOnToCall() { return goOn(true); }
    /** Lets it go on to its end. */
    void goOnToEnd() { goOn(false); }

    pid_t process() const { return m_process; }
    /** Whether it is in a system call, or at the end of one. */
    bool isInCall() const { return m_isInCall; }
    /** When it has ended: its exit status; 128 + N after signal N. */
    int status() const { return m_status; }
    /** When it has ended: its page faults, without those that waited for a disk. */
    long pageFaults() const { return m_pageFaults; }

private:
    bool goOn(bool toCall);

    pid_t m_process;
    bool m_isInCall = false;
    int m_status = 0;
    long m_pageFaults = 0;
};

/**
 * Starts a program without a standard error, calls the action when it is about to make the system
 * call of this number, and waits for its end.
 *
 * @return false when the program ended before that system call; the action was not called then
 */
bool actAtCall(const Program& program, int number, const std::function<void(pid_t)>& action);

/** How many system calls a program makes until it ends. */
int countCalls(const Program& program);

} // namespace testsupport

#endif
