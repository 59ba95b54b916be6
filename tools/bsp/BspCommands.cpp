#include "Command.h"

#include "Bsp.h"
#include "TrafficClientMode.h"

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

std::int32_t getTrafClientMode(std::int32_t /*argc*/, char* /*argv*/[])
{
    return print(trafficClientModeOf(static_cast<RadiolinkMode>(Bsp_getRadiolinkMode())));
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

std::int32_t getSlotId(std::int32_t /*argc*/, char* /*argv*/[])
{
    std::cout << Bsp_getSlotId() << std::endl;
    return 0;
}

constexpr const char* ImageExpected = "Error: valid argument is <image>";
constexpr const char* UnknownRState = "Unknown r-state";

std::int32_t getKernelRState(std::int32_t argc, char* argv[])
{
    // Stays empty when the kernel's version has no R-state.
    char rstate[8] = {};
    if (argc != 1) {
        return fail(ImageExpected);
    }
    if (Bsp_getKernelRState(argv[0], rstate, sizeof rstate) != 0) {
        return fail(UnknownRState);
    }
    return print(rstate);
}

std::int32_t getUbootProductInfo(std::int32_t argc, char* argv[])
{
    static char productNumber[80];
    static char rstate[80];
    if (argc != 1) {
        return fail(ImageExpected);
    }
    if (Bsp_getUbootProductInfo(argv[0], productNumber, sizeof productNumber, rstate,
                                sizeof rstate) != 0)
    {
        return fail(UnknownRState);
    }
    std::cout << productNumber << ' ' << rstate << std::endl;
    return 0;
}

} // namespace

const std::vector<Command> bspCommands{
    {getHwRevision, "getHwRevision", "Read hardware revision."},
    {getFpgaPath, "getFpgaPath",
     "bsp getFpgaPath <name>. For a specific fpga return an fpga sub path."},
    {getBoardId, "getBoardId", "Get board ID (in text format: KT4752_REV_B, VX4791_REV_A etc.)."},
    {getProductId, "getProductId", "Get product ID (in text format: KT4752, VX4791 etc.)."},
    {getControlBackplane, "getControlBackplane",
     "Get backplane variant (in text format: Pci, Pcie, Ethernet, None)."},
    {getSlotId, "getSlotId",
     "Get the slot position in the rack. -1 indicates not yet set, 0 indicates not applicable"},
    {getDspType, "getDspType", "Get DSP variant (in text format: BCM85110, BCM85655 etc.)."},
    {getRadiolinkMode, "getRadiolinkMode", "Get radio-link mode (in text format: Rl4 or Rl5)."},
    {setRadiolinkMode, "setRadiolinkMode", "Set radio-link mode (in text format: Rl4 or Rl5)."},
    {clearRadiolinkMode, "clearRadiolinkMode",
     "Clear specific radio-link mode (meaning returning to default mode)."},
    {getTrafClientMode, "getTrafClientMode",
     "Get TrafClientMode (in text format: Rlps or Lads). "
     "DEPRECATED: Returns value based on RadiolinkMode"},
    {doNothing, "setTrafClientMode", "DEPRECATED: Does nothing"},
    {doNothing, "clearTrafClientMode", "DEPRECATED: Does nothing"},
    {getTrafFpgaType, "getTrafFpgaType",
     "Get FPGA variant (in text format: Bittern, Jackdaw, Osprey etc.)."},
    {getKernelRState, "getKernelRState", "Get kernel R-State (in text format: R1A01 etc.)."},
    {getUbootProductInfo, "getUbootProductInfo", "Get U-boot product number and r-state."},
};
