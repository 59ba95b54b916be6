#ifndef TESTS_RSTATE_RSTATECONSTANTS_H
#define TESTS_RSTATE_RSTATECONSTANTS_H

#include <cstdint>
#include <vector>

/** The class's constants by their addresses, taken by code in C++11. */
std::vector<const std::int32_t*> addressesOfConstants();

#endif
