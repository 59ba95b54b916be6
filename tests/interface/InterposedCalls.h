/**
 * @file
 * @brief The library functions that the layer calls: each call is listed, and fails when told to.
 *
 * Linking this replaces malloc as well. What the platforms for tests call is not listed.
 */
#ifndef TESTS_INTERFACE_INTERPOSEDCALLS_H
#define TESTS_INTERFACE_INTERPOSEDCALLS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace interposed
{

/** What is done to one call. */
struct Fault
{
    enum Kind
    {
        Fails,     /**< It is not made, and fails with the errno value. */
        FailsDone, /**< It is made, and fails all the same. */
        Gives,     /**< It is not made, and gives the value. */
        IsShort,   /**< It is asked for one byte. */
        Throws     /**< It is not made, and throws: a std::exception for 0, else the value. */
    };

    std::size_t call; /**< Index among the calls. */
    Kind kind;
    int value; /**< errno, or what it gives. */
};

/** A function the first calls of which fail in any case; they are not listed. */
struct Broken
{
    std::string function;
    int error;
    int times;
};

/** What is seen of a process, in memory that outlives it. */
struct Record
{
    std::size_t size;
    std::array<unsigned char, 4096> functions; /**< Of the calls, in their order. */
    std::array<unsigned char, 4096> outer;     /**< 1 + the function that an allocation is for. */
    long mappings;                             /**< Made and not undone. */
    std::array<const void*, 256> heap;         /**< Allocated and not freed; null is none. */
};

/** A function and how its calls can plausibly fail. */
struct Function
{
    const char* name;
    Fault::Kind kind;
    std::vector<int> values;
    bool countsBytes; /**< It can do less than it was asked for, or nothing. */
};
const std::vector<Function>& functions();

/** The name of a function that was called; for a library's allocation that of its own as well. */
std::string nameOf(const Record& record, std::size_t call);

/** All that can plausibly happen at each of the calls, one fault at a time. */
std::vector<Fault> plausibleFaults(const Record& record);

/** The fault in words. */
std::string describe(const Record& record, const Fault& fault);

/** How much of the heap was not given back. */
std::size_t heapLeft(const Record& record);

/** Puts the hooks in place; once. */
void standBetween();

/** From now on calls are listed and fail. */
void watch(Record& record, std::vector<Broken> broken, const std::optional<Fault>& fault);
void unwatch();

/** Lists a call of the platform. Gives the fault if it is to fail. */
std::optional<Fault> enter(const char* function);

} // namespace interposed

#endif
