/**
 * @file
 * @brief A program that uses the store as it is told.
 *
 * It reads commands from standard input, a line each, and answers each with one line:
 *
 * open                   makes the store
 * get NAME SIZE          finds or creates an object: "created", "found" or "failed"
 * write TEXT             writes to the object
 * read                   the object's text
 * try                    locks the object's mutex: "ok" or "busy"
 * unlock                 unlocks it
 * hold                   takes the store's semaphore
 * free                   number of free blocks
 * slot                   the slot id
 * setslot NUMBER         sets the slot id
 * lockslot               locks the slot id's mutex
 * errors                 messages of level 1 so far
 * gate FD                waits for the end of what comes from that descriptor
 * fork                   starts a copy of this process, which exits at once
 */
#include "Bsp.h"
#include "Program.h"
#include "RecordingTrace.h"
#include "SlotObject.h"
#include "WarmDatabase.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>

#include <pthread.h>
#include <unistd.h>

namespace
{

using os::bsp::dtcm::WarmDatabase;

void* object = nullptr;
std::mutex* sync = nullptr;

std::string outcome(bool success)
{
    return success ? "ok" : "failed";
}

std::string get(std::istream& words)
{
    std::string name;
    unsigned int size = 0;
    words >> name >> size;
    bool created = false;
    if (!WarmDatabase::getInstance().getObjectData(name, &object, size, &sync, created)) {
        return "failed";
    }
    return created ? "created" : "found";
}

std::string write(std::istream& words)
{
    std::string text;
    words >> text;
    std::memcpy(object, text.c_str(), text.size() + 1);
    return "ok";
}

std::string errors()
{
    std::string text;
    for (const std::string& line : recordingtrace::takeLines(1)) {
        text += text.empty() ? line : "; " + line;
    }
    return text;
}

std::string gate(std::istream& words)
{
    int fd = -1;
    words >> fd;
    char byte = 0;
    while (::read(fd, &byte, 1) > 0) {
    }
    return "ok";
}

std::string forkAndExit()
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::exit(0); // NOLINT(concurrency-mt-unsafe): a process of one thread
    }
    return std::to_string(testsupport::waitFor(child));
}

std::string setSlot(std::istream& words)
{
    int id = 0;
    words >> id;
    Bsp_setSlotId(id);
    return "ok";
}

std::string lockSlot()
{
    void* slot = nullptr;
    if (!WarmDatabase::getInstance().retrieveObject("SLOT", &slot, sizeof(SlotObject), true)) {
        return "failed";
    }
    return outcome(::pthread_mutex_lock(&static_cast<SlotObject*>(slot)->mutex) == 0);
}

const std::map<std::string, std::function<std::string(std::istream&)>> commands = {
    {"open",
     [](std::istream&) {
         WarmDatabase::getInstance();
         return outcome(true);
     }},
    {"get", get},
    {"write", write},
    {"read", [](std::istream&) { return std::string(static_cast<const char*>(object)); }},
    {"try", [](std::istream&) { return std::string(sync->try_lock() ? "ok" : "busy"); }},
    {"unlock",
     [](std::istream&) {
         sync->unlock();
         return outcome(true);
     }},
    {"hold",
     [](std::istream&) {
         WarmDatabase::getInstance().lock();
         return outcome(true);
     }},
    {"free",
     [](std::istream&) {
         return std::to_string(WarmDatabase::getInstance().getNumberOfFreeBlocks());
     }},
    {"slot", [](std::istream&) { return std::to_string(Bsp_getSlotId()); }},
    {"setslot", setSlot},
    {"lockslot", [](std::istream&) { return lockSlot(); }},
    {"errors", [](std::istream&) { return errors(); }},
    {"gate", gate},
    {"fork", [](std::istream&) { return forkAndExit(); }},
};

} // namespace

int main()
{
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        std::cout << commands.at(command)(words) << std::endl;
    }
    return 0;
}
