/**
 * @file
 * @brief Uses the store of warm objects as it is told, for trying a board out.
 *
 * slot [NUMBER]         prints the slot id, after it set the one that it is given
 * put NAME TEXT         keeps a text in an object
 * get NAME              prints the text
 * lock NAME             tells whether the object's mutex is free
 * write NAME TEXT FILE  locks the mutex, writes half of the text and makes the file; once that was
 *                       removed, writes the rest and unlocks the mutex
 * hold NAME FILE        tells whether it made the object, and makes the file; once that was
 *                       removed, prints the object's text
 * fill FILE             finds or makes 31 objects, tells how many it made, and makes the file; ends
 *                       once that was removed
 * free                  prints the number of free blocks
 * cause                 prints the kind of the last restart
 */
#include <Bsp.h>
#include <WarmDatabase.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace
{

using os::bsp::dtcm::WarmDatabase;

constexpr unsigned int TextSize = 64;

struct Object
{
    char* text;
    std::mutex* mutex;
    bool created;
};

Object object(const std::string& name)
{
    void* data = nullptr;
    Object result{};
    if (!WarmDatabase::getInstance().getObjectData(name, &data, TextSize, &result.mutex,
                                                   result.created))
    {
        std::cerr << "warm: no object " << name << '\n';
        std::exit(1);
    }
    result.text = static_cast<char*>(data);
    return result;
}

void showAndAwaitRemoval(const std::string& file)
{
    std::ofstream{file};
    while (std::filesystem::exists(file)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void put(const std::string& name, const std::string& text)
{
    const Object place = object(name);
    const std::lock_guard<std::mutex> guard(*place.mutex);
    std::strncpy(place.text, text.c_str(), TextSize - 1);
}

void lock(const std::string& name)
{
    std::mutex& mutex = *object(name).mutex;
    const bool isFree = mutex.try_lock();
    std::cout << (isFree ? "free" : "locked") << '\n';
    if (isFree) {
        mutex.unlock();
    }
}

void write(const std::string& name, const std::string& text, const std::string& file)
{
    const Object place = object(name);
    const std::lock_guard<std::mutex> guard(*place.mutex);
    std::strncpy(place.text, text.c_str(), text.size() / 2);
    showAndAwaitRemoval(file);
    std::strncpy(place.text, text.c_str(), TextSize - 1);
}

void hold(const std::string& name, const std::string& file)
{
    const Object place = object(name);
    std::cout << (place.created ? "made" : "found") << std::endl;
    showAndAwaitRemoval(file);
    std::cout << place.text << '\n';
}

void fill(const std::string& file)
{
    unsigned int made = 0;
    for (int i = 1; i <= 31; ++i) {
        made += object("OBJECT" + std::to_string(i)).created ? 1 : 0;
    }
    std::cout << made << std::endl;
    showAndAwaitRemoval(file);
}

int run(const std::vector<std::string>& words)
{
    const std::string command = words.empty() ? "" : words[0];
    const std::size_t arguments = words.size() - 1;
    if (command == "slot" && arguments <= 1) {
        if (arguments == 1) {
            Bsp_setSlotId(std::stoi(words[1]));
        }
        std::cout << Bsp_getSlotId() << '\n';
    } else if (command == "put" && arguments == 2) {
        put(words[1], words[2]);
    } else if (command == "get" && arguments == 1) {
        std::cout << object(words[1]).text << '\n';
    } else if (command == "lock" && arguments == 1) {
        lock(words[1]);
    } else if (command == "write" && arguments == 3) {
        write(words[1], words[2], words[3]);
    } else if (command == "hold" && arguments == 2) {
        hold(words[1], words[2]);
    } else if (command == "fill" && arguments == 1) {
        fill(words[1]);
    } else if (command == "free" && arguments == 0) {
        std::cout << WarmDatabase::getInstance().getNumberOfFreeBlocks() << '\n';
    } else if (command == "cause" && arguments == 0) {
        std::cout << os::bsp::resetTypeToString(os::bsp::getResetType()) << '\n';
    } else {
        std::cerr
            << "usage: warm slot [NUMBER] | put NAME TEXT | get NAME | lock NAME |\n"
               "            write NAME TEXT FILE | hold NAME FILE | fill FILE | free | cause\n";
        return 2;
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    return run({argv + 1, argv + argc});
}
