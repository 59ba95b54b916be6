#include "WarmUsers.h"

#include "Bsp.h"
#include "FakeDevices.h"
#include "WaitingProcess.h"
#include "WarmDatabase.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <stdexcept>

#include <sys/mman.h>
#include <unistd.h>

namespace faults
{

namespace
{

using os::bsp::dtcm::WarmDatabase;

/** Asks the store everything. What waits for ever comes to no end. */
void askAll(SharedText& answers)
{
    bool isCreated = false;
    const void* old = findOrCreate("OLD", isCreated);
    answers.add(isCreated ? "OLD is new"
                          : "OLD is " + printable({static_cast<const char*>(old), ObjectSize}));
    findOrCreate("NEW", isCreated);
    answers.add(isCreated ? ", NEW is new" : ", NEW is there");
    answers.add(", slot " + std::to_string(Bsp_getSlotId()));
    answers.add(", " + std::to_string(WarmDatabase::getInstance().getNumberOfFreeBlocks()) +
                " free");
}

} // namespace

void* findOrCreate(const char* name, bool& isCreated)
{
    void* object = nullptr;
    std::mutex* sync = nullptr;
    WarmDatabase::getInstance().getObjectData(name, &object, ObjectSize, &sync, isCreated);
    return object;
}

void useResetCause(ResetCause cause)
{
    fakedevices::control().word = cause;
}

void end()
{
    std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
}

SharedText::SharedText()
    : m_text(static_cast<char*>(
          ::mmap(nullptr, Size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
{}

SharedText::~SharedText()
{
    ::munmap(m_text, Size);
}

void SharedText::add(const std::string& words)
{
    std::strcat(m_text, words.c_str());
}

std::string answersOfNewcomer(ResetCause cause, SharedText& answers)
{
    answers.clear();
    const pid_t process = ::fork();
    if (process == 0) {
        useResetCause(cause);
        askAll(answers);
        ::_exit(0);
    }
    const int status = testsupport::endOf(process);
    return answers.get() + (status == testsupport::WaitsForEver ? "waits"
                            : status == 0                       ? ""
                                                                : std::to_string(status));
}

Creator::Creator(SharedText& answers) : m_answers(answers)
{
    std::array<int, 2> orders{};
    std::array<int, 2> done{};
    if (::pipe(orders.data()) != 0 || ::pipe(done.data()) != 0) {
        throw std::runtime_error("pipe");
    }
    m_process = ::fork();
    if (m_process == 0) {
        ::close(orders[1]);
        obey(orders[0], done[1]);
    }
    ::close(orders[0]);
    ::close(done[1]);
    m_orders = orders[1];
    m_done = done[0];
    char byte = 0;
    EXPECT_EQ(::read(m_done, &byte, 1), 1);
}

Creator::~Creator()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    ::close(m_orders);
    ::close(m_done);
}

std::string Creator::answers()
{
    m_answers.clear();
    give('a');
    const int status = testsupport::endOf(m_process);
    return m_answers.get() + (status == testsupport::WaitsForEver ? "waits" : "");
}

void Creator::exit()
{
    give('e');
    EXPECT_EQ(testsupport::endOf(m_process), 0);
}

void Creator::obey(int orders, int done)
{
    WarmDatabase::getInstance();
    [[maybe_unused]] ssize_t size = ::write(done, "", 1);
    char order = 0;
    size = ::read(orders, &order, 1);
    if (order == 'e') {
        end();
    }
    askAll(m_answers);
    ::_exit(0);
}

void Creator::give(char order) const
{
    EXPECT_EQ(::write(m_orders, &order, 1), 1);
}

} // namespace faults
