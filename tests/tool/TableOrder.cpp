/**
 * @file
 * @brief Says what is there when the tool makes the command table of the group "bsp".
 */
#include "BspEnumerations.h"
#include "Command.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <ostream>

// <iostream> would make the streams here.
extern std::ostream standardOutput __asm__("_ZSt4cout");

namespace
{

constexpr std::size_t BspTableSize = 16 * sizeof(Command);

const char* yesOrNo(bool value)
{
    return value ? "yes" : "no";
}

} // namespace

void* operator new(std::size_t size)
{
    if (size == BspTableSize) {
        std::fprintf(stderr, "command table: streams %s, name tables %s\n",
                     yesOrNo(standardOutput.rdbuf() != nullptr),
                     yesOrNo(os::bsp::productIdNames[0].text == "KT4754" &&
                             os::bsp::resetTypeNames[0].text == "Cold"));
    }
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
