/**
 * @file
 * @brief What the layer writes when the board's hardware code is of no use.
 */
#ifndef TESTS_IDENTITY_MESSAGES_H
#define TESTS_IDENTITY_MESSAGES_H

#include <string>

constexpr const char* invalidVariant = "bsp.core 1 operator()(): Invalid hardware variant";

inline std::string readFailed(int result)
{
    return "bsp.core 1 operator()(): e2prom_data_read() failed. Returned " + std::to_string(result);
}

#endif
