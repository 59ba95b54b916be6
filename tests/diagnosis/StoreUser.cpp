/**
 * @file
 * @brief A program that uses the warm area as its words say, and then waits until its standard
 *        input ends.
 *
 * open               makes the store
 * hold               takes the store's semaphore
 * object NAME        finds or creates an object
 * lock NAME          the same, and locks the mutex of its block
 * slot NUMBER        sets the slot id
 * lockslot           locks the mutex of the slot id
 * leave              ends the first thread, so that another one waits
 */
#include "Bsp.h"
#include "WarmDatabase.h"
#include "WarmLayout.h"

#include <iostream>
#include <mutex>
#include <string>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace
{

using os::bsp::dtcm::WarmDatabase;

std::mutex* mutexOf(const std::string& name)
{
    constexpr unsigned int size = 8;
    void* object = nullptr;
    std::mutex* mutex = nullptr;
    bool created = false;
    WarmDatabase::getInstance().getObjectData(name, &object, size, &mutex, created);
    return mutex;
}

void lockSlot()
{
    void* object = nullptr;
    WarmDatabase::getInstance().retrieveObject(os::bsp::dtcm::SlotObjectName, &object,
                                               sizeof(os::bsp::dtcm::SlotObject), true);
    ::pthread_mutex_lock(&static_cast<os::bsp::dtcm::SlotObject*>(object)->mutex);
}

void waitForEndOfInput()
{
    std::cout << "ready" << std::endl;
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {
    }
}

} // namespace

int main(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "open") {
            WarmDatabase::getInstance();
        } else if (word == "hold") {
            WarmDatabase::getInstance().lock();
        } else if (word == "object") {
            mutexOf(argv[++i]);
        } else if (word == "lock") {
            mutexOf(argv[++i])->lock();
        } else if (word == "slot") {
            Bsp_setSlotId(std::atoi(argv[++i]));
        } else if (word == "lockslot") {
            lockSlot();
        } else if (word == "leave") {
            std::thread([] {
                waitForEndOfInput();
                std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe): the only thread
            }).detach();
            ::pthread_exit(nullptr);
        } else {
            return EXIT_FAILURE;
        }
    }
    waitForEndOfInput();
    return EXIT_SUCCESS;
}
