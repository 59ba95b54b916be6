/**
 * @file
 * @brief Processes that ask the store for everything.
 */
#ifndef TESTS_FAULTS_WARMUSERS_H
#define TESTS_FAULTS_WARMUSERS_H

#include "WarmModel.h"

#include <cstddef>
#include <string>

#include <sys/types.h>

namespace faults
{

/** The object of that name, found or made. */
void* findOrCreate(const char* name, bool& isCreated);

/** What a reset register says from now on. */
void useResetCause(ResetCause cause);

/** Returns from main. */
[[noreturn]] void end();

/** Text in memory that all processes see. */
class SharedText
{
public:
    SharedText();
    ~SharedText();
    SharedText(const SharedText&) = delete;
    SharedText& operator=(const SharedText&) = delete;

    void clear() { m_text[0] = '\0'; }
    void add(const std::string& words);
    std::string get() const { return m_text; }

private:
    static constexpr std::size_t Size = 4096;
    char* const m_text;
};

/** What a new process answers; "waits" where it would for ever. */
std::string answersOfNewcomer(ResetCause cause, SharedText& answers);

/** A process that has made the store, and does what it is told. */
class Creator
{
public:
    explicit Creator(SharedText& answers);
    ~Creator();
    Creator(const Creator&) = delete;
    Creator& operator=(const Creator&) = delete;

    /** It asks all and ends; as answersOfNewcomer. */
    std::string answers();
    /** It returns from main. */
    void exit();

private:
    [[noreturn]] void obey(int orders, int done);
    void give(char order) const;

    SharedText& m_answers;
    pid_t m_process = -1;
    int m_orders = -1;
    int m_done = -1;
};

} // namespace faults

#endif
