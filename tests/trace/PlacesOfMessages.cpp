/**
 * @file
 * @brief Calls each function with a message that nobody wants, and says where it lies: a line with
 * its name, its address in hexadecimal and the number of instructions that it takes.
 */
#include "DisabledMessages.h"

#include <cstdint>
#include <cstdio>

int main()
{
    HvxTrace channel("test.channel", 3);
    GT_TraceRecord record{3, "test.record"};
    for (const disabledmessages::Site& site : disabledmessages::Sites) {
        site.write(channel, record, 5);
        // The lowest bit of a function's address says how it is encoded.
        const auto place = reinterpret_cast<std::uintptr_t>(site.write) & ~std::uintptr_t{1};
        std::printf("%s %08lx %ld\n", site.name, static_cast<unsigned long>(place),
                    site.instructions);
    }
    return 0;
}
