#include "BspCommands.h"

#include "Bsp.h"

#include <iostream>

namespace
{

using os::bsp::nameOf;
using os::bsp::RadiolinkMode;

int print(const std::string& text)
{
    std::cout << text << std::endl;
    return 0;
}

int fail(const char* message)
{
    std::cerr << message << std::endl;
    return 1;
}

std::int32_t getHwRevision(std::int32_t /*argc*/, char* /*argv*/[])
{
    std::cout << static_cast<unsigned int>(Bsp_getHwRevision()) << std::endl;
    return 0;
}

std::int32_t getFpgaPath(std::int32_t argc, char* argv[])
{
    if (argc != 1) {
        return fail("Error: valid argument are <FGPA name> [<HW revision>]");
    }
    const char* path = Bsp_getFpgaPath(argv[0]);
    return print(path == nullptr ? "" : path);
}

std::int32_t getBoardId(std::int32_t /*argc*/, char* /*argv*/[])
{
    // A null text leaves the stream bad: nothing is printed, not even the end of the line.
    std::cout << Bsp_getBoardIdText() << std::endl;
    return 0;
}

std::int32_t getProductId(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(nameOf(os::bsp::productIdNames, Bsp_getProductId()));
}

std::int32_t getControlBackplane(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(nameOf(os::bsp::controlBackplaneNames, Bsp_getControlBackplane()));
}

std::int32_t getDspType(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(nameOf(os::bsp::dspTypeNames, Bsp_getDspType()));
}

std::int32_t getRadiolinkMode(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(nameOf(os::bsp::radiolinkModeNames, Bsp_getRadiolinkMode()));
}

std::int32_t setRadiolinkMode(std::int32_t argc, char* argv[])
{
    if (argc == 1) {
        for (const RadiolinkMode mode : {RadiolinkMode::Rl4, RadiolinkMode::Rl5}) {
            if (nameOf(os::bsp::radiolinkModeNames, mode) == argv[0]) {
                Bsp_setRadiolinkMode(static_cast<int>(mode));
                return 0;
            }
        }
    }
    return fail("Error: valid arguments are <Rl4 | Rl5>");
}

std::int32_t clearRadiolinkMode(std::int32_t /*argc*/, char* /*argv*/[])
{
    Bsp_clearRadiolinkMode();
    return 0;
}

/** The traffic client mode is no longer stored; it follows from the radio-link mode. */
std::int32_t getTrafClientMode(std::int32_t /*argc*/, char* /*argv*/[])
{
    const bool isRl5 = Bsp_getRadiolinkMode() == static_cast<int>(RadiolinkMode::Rl5);
    return print(isRl5 ? "Lads" : "Rlps");
}

/** For callers from the time when the traffic client mode was stored. */
std::int32_t doNothing(std::int32_t /*argc*/, char* /*argv*/[])
{
    return 0;
}

std::int32_t getTrafFpgaType(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(nameOf(os::bsp::trafFpgaTypeNames, Bsp_getTrafFpgaType()));
}

} // namespace

constexpr Command getHwRevisionCommand{getHwRevision, "getHwRevision", "Read hardware revision."};
constexpr Command getFpgaPathCommand{
    getFpgaPath, "getFpgaPath",
    "bsp getFpgaPath <name>. For a specific fpga return an fpga sub path."};
constexpr Command getBoardIdCommand{
    getBoardId, "getBoardId", "Get board ID (in text format: KT4752_REV_B, VX4791_REV_A etc.)."};
constexpr Command getProductIdCommand{getProductId, "getProductId",
                                      "Get product ID (in text format: KT4752, VX4791 etc.)."};
constexpr Command getControlBackplaneCommand{
    getControlBackplane, "getControlBackplane",
    "Get backplane variant (in text format: Pci, Pcie, Ethernet, None)."};
constexpr Command getDspTypeCommand{getDspType, "getDspType",
                                    "Get DSP variant (in text format: BCM85110, BCM85655 etc.)."};
constexpr Command getRadiolinkModeCommand{getRadiolinkMode, "getRadiolinkMode",
                                          "Get radio-link mode (in text format: Rl4 or Rl5)."};
constexpr Command setRadiolinkModeCommand{setRadiolinkMode, "setRadiolinkMode",
                                          "Set radio-link mode (in text format: Rl4 or Rl5)."};
constexpr Command clearRadiolinkModeCommand{
    clearRadiolinkMode, "clearRadiolinkMode",
    "Clear specific radio-link mode (meaning returning to default mode)."};
constexpr Command getTrafClientModeCommand{getTrafClientMode, "getTrafClientMode",
                                           "Get TrafClientMode (in text format: Rlps or Lads). "
                                           "DEPRECATED: Returns value based on RadiolinkMode"};
constexpr Command setTrafClientModeCommand{doNothing, "setTrafClientMode",
                                           "DEPRECATED: Does nothing"};
constexpr Command clearTrafClientModeCommand{doNothing, "clearTrafClientMode",
                                             "DEPRECATED: Does nothing"};
constexpr Command getTrafFpgaTypeCommand{
    getTrafFpgaType, "getTrafFpgaType",
    "Get FPGA variant (in text format: Bittern, Jackdaw, Osprey etc.)."};
