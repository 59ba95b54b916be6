/**
 * @file
 * @brief Scripted results for open, write and close, and a record of the calls.
 *
 * While a SystemCalls object lives, the calls go to it; otherwise to the system.
 */
#ifndef TESTS_LED_SYSTEMCALLS_H
#define TESTS_LED_SYSTEMCALLS_H

#include <deque>
#include <string>
#include <vector>

/** What a call is to return; errno is set when that is -1. */
struct Scripted
{
    int result;
    int error = 0;
};

class SystemCalls
{
public:
    SystemCalls();
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    /** The object that takes the calls; null when there is none. */
    static SystemCalls* active();

    /** Records a call and returns what the script has for it; a call too many fails the test. */
    int call(std::deque<Scripted>& script, const std::string& text);

    /** The calls until now, such as "open PATH", "write 5 TEXT" and "close 5". */
    std::vector<std::string> calls;

    std::deque<Scripted> opens;
    std::deque<Scripted> writes;
    std::deque<Scripted> closes;
};

#endif
