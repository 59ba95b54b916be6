#include "BspCommands.h"

#include "Bsp.h"

#include <iostream>

namespace
{

constexpr std::int32_t Success = 0;
constexpr std::int32_t Failure = 1;

/** Whether the arguments are one image; says so when they are not. */
bool isOneImage(std::int32_t argc)
{
    if (argc != 1) {
        std::cerr << "Error: valid argument is <image>" << std::endl;
        return false;
    }
    return true;
}

std::int32_t failUnknown()
{
    std::cerr << "Unknown r-state" << std::endl;
    return Failure;
}

std::int32_t getKernelRState(std::int32_t argc, char* argv[])
{
    // Stays empty when the kernel's version has no R-state.
    char rstate[8] = {};
    if (!isOneImage(argc)) {
        return Failure;
    }
    if (Bsp_getKernelRState(argv[0], rstate, sizeof rstate) != 0) {
        return failUnknown();
    }
    std::cout << rstate << std::endl;
    return Success;
}

std::int32_t getUbootProductInfo(std::int32_t argc, char* argv[])
{
    static char productNumber[80];
    static char rstate[80];
    if (!isOneImage(argc)) {
        return Failure;
    }
    if (Bsp_getUbootProductInfo(argv[0], productNumber, sizeof productNumber, rstate,
                                sizeof rstate) != 0)
    {
        return failUnknown();
    }
    std::cout << productNumber << ' ' << rstate << std::endl;
    return Success;
}

} // namespace

constexpr Command getKernelRStateCommand{getKernelRState, "getKernelRState",
                                         "Get kernel R-State (in text format: R1A01 etc.)."};
constexpr Command getUbootProductInfoCommand{getUbootProductInfo, "getUbootProductInfo",
                                             "Get U-boot product number and r-state."};
