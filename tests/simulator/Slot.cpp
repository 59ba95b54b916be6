/**
 * @file
 * @brief A program on the board: prints the slot id, after it set the one that it is given.
 */
#include "Bsp.h"

#include <iostream>

int main(int argc, char* argv[])
{
    if (argc > 1) {
        Bsp_setSlotId(std::atoi(argv[1])); // NOLINT(cert-err34-c): the tests give numbers
    }
    std::cout << Bsp_getSlotId() << std::endl;
}
