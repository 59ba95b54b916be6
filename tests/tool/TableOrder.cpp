/**
 * @file
 * @brief Says what is there when the tool makes the command table of the group "bsp".
 */
#include "Allocations.h"
#include "BspEnumerations.h"
#include "Command.h"

#include <cstdio>
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

/** Before all else that is made at the start. */
[[gnu::constructor(101)]] void waitForTheTable()
{
    testsupport::observeAllocations([](std::size_t size) {
        if (size == BspTableSize) {
            std::fprintf(stderr, "command table: streams %s, name tables %s\n",
                         yesOrNo(standardOutput.rdbuf() != nullptr),
                         yesOrNo(os::bsp::productIdNames[0].text == "KT4754" &&
                                 os::bsp::resetTypeNames[0].text == "Cold"));
        }
    });
}

} // namespace
