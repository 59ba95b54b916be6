#ifndef TESTS_DIAGNOSIS_DIAGTEST_H
#define TESTS_DIAGNOSIS_DIAGTEST_H

#include "Files.h"
#include "Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>
#include <unistd.h>

constexpr const char* Semaphore = "/dev/shm/sem.DtcmDbSharedSem";
constexpr const char* Mutexes = "/dev/shm/DtcmSync";
/** Of what this user makes, as findings say it. */
const std::string Names = "of user " + std::to_string(::geteuid()) + ", last changed TIME";

/** A process that runs StoreUser; it is killed at the end of the scope. */
class StoreUser
{
public:
    StoreUser(const std::string& board, const std::vector<std::string>& words);
    ~StoreUser();
    StoreUser(const StoreUser&) = delete;
    StoreUser& operator=(const StoreUser&) = delete;

    pid_t id() const { return m_process; }
    void kill();
    /** Kills it, and leaves its number to it: nobody waits for it yet. */
    void killUnnoticed() const;
    /** Lets it return from main. */
    void end();

private:
    void wait();

    pid_t m_process = 0;
    int m_input = -1;
};

/**
 * Runs bsp-diag on a healthy board of the test case's own: a NXU4A after a warm restart, with
 * /dev/shm, /tmp and /sys/class/leds.
 */
class DiagTest : public testing::Test
{
protected:
    using Words = std::vector<std::string>;

    void SetUp() override;

    testsupport::Program tool(const std::string& name, Words words) const;
    testsupport::Program diag(Words words) const { return tool("bsp-diag", std::move(words)); }
    /** bsp-diag for somebody who is not root. */
    testsupport::Program diagOfOrdinaryUser(Words words) const;
    /** Why programs cannot be another user's here; empty when they can. */
    static std::string noOtherUser();

    /** Why this user cannot say that nobody uses a name; empty when he can. */
    static std::string unseenProcesses()
    {
        return ::geteuid() == 0 ? "" : "only root sees what all processes use";
    }

    /** What check finds: its lines, with what differs from run to run as TIME, N and BOARD. */
    Words findings() const { return findings(diag({"check"})); }
    Words findings(const testsupport::Program& program) const;
    void expectFindings(const Words& lines) const { EXPECT_EQ(findings(), lines); }
    /** The names of the findings. */
    Words names() const { return namesIn(findings()); }
    static Words namesIn(const Words& lines);

    std::string board() const { return m_directory.file("b"); }
    std::string file(const std::string& name) const { return m_directory.file(name); }
    std::string boardFile(const std::string& name) const { return board() + '/' + name; }
    void write(const std::string& name, const std::string& contents) const
    {
        testsupport::writeFile(boardFile(name), contents);
    }
    void makeLed(const std::string& name) const;
    void setResetCause(std::uint32_t cause) const;
    /** Puts an object into the warm area; blocks are counted from 1. */
    void putBlock(std::size_t number, std::string name, std::string data = "") const;
    /** A word as it lies in memory. */
    static std::string word(std::uint32_t value) { return testsupport::bytesOf(value); }

    std::string normal(std::string text) const;

private:
    testsupport::TemporaryDirectory m_directory;
};

#endif
