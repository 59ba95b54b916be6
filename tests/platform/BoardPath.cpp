/**
 * @file
 * @brief Prints the path of the board directory.
 */
#include "BoardDirectory.h"

#include <cstdio>

int main()
{
    return std::puts(boarddirectory::path().c_str()) < 0 ? 1 : 0;
}
