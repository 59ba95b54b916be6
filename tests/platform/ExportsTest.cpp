/**
 * @file
 * @brief The shared stand-ins define for others what platform/include declares, and nothing else.
 */
#include "Program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace
{

using testing::ElementsAre;
using namespace testsupport;

/** The names that a shared library defines, without the arguments of functions. */
std::set<std::string> exportsOf(const std::string& library)
{
    Program nm = programAt(
        TEST_NM, {"-D", "-C", "--defined-only", TEST_LIBRARY_DIR "/lib" + library + ".so"});
    nm.foreign = true;
    const Outcome outcome = nm.run();
    EXPECT_EQ(outcome.status, 0) << outcome.err;

    std::set<std::string> names;
    std::istringstream lines(outcome.out);
    std::string address;
    std::string type;
    for (std::string name; lines >> address >> type && std::getline(lines, name);) {
        const std::size_t end = std::min(name.find('('), name.find("[abi:"));
        names.insert(name.substr(1, end == std::string::npos ? end : end - 1));
    }
    return names;
}

TEST(Exports, OfTheTraceLibrary)
{
    EXPECT_THAT(exportsOf("qeltrace"),
                ElementsAre("GT_printf2", "HvxTrace::HvxTrace", "HvxTrace::beginLogMsg",
                            "HvxTrace::endLogMsg", "HvxTrace::logMsgData", "HvxTrace::~HvxTrace"));
}

TEST(Exports, OfTheBaseBoardLibrary)
{
    EXPECT_THAT(exportsOf("baseboard"), ElementsAre("e2prom_data_read"));
}

TEST(Exports, OfTheDeviceLibrary)
{
    EXPECT_THAT(exportsOf("ddevio"),
                ElementsAre("DDevIo::Factory::createUnique", "DDevIo::Factory::getInstance",
                            "DDevIo::PthreadMutex::PthreadMutex", "DDevIo::PthreadMutex::lock",
                            "DDevIo::PthreadMutex::unlock", "DDevIo::PthreadMutex::~PthreadMutex",
                            "DDevIo_close", "DDevIo_getFileDescriptor", "DDevIo_open",
                            "typeinfo for DDevIo::Device<unsigned int>",
                            "typeinfo for DDevIo::Factory", "typeinfo for DDevIo::IDevice",
                            "typeinfo for DDevIo::IMutex", "typeinfo for DDevIo::PthreadMutex",
                            "typeinfo name for DDevIo::Device<unsigned int>",
                            "typeinfo name for DDevIo::Factory",
                            "typeinfo name for DDevIo::IDevice", "typeinfo name for DDevIo::IMutex",
                            "typeinfo name for DDevIo::PthreadMutex", "vtable for DDevIo::Factory",
                            "vtable for DDevIo::PthreadMutex"));
}

TEST(Exports, OfTheConfigurationLibrary)
{
    EXPECT_THAT(
        exportsOf("nxuconfig"),
        ElementsAre("os::bsp::NxuConfig::NxuConfig", "os::bsp::NxuConfig::clear",
                    "os::bsp::NxuConfig::get", "os::bsp::NxuConfig::set",
                    "os::bsp::NxuConfig::~NxuConfig", "os::bsp::hwVariants",
                    "os::bsp::key::FpgaVariant", "os::bsp::key::RadiolinkMode",
                    "os::bsp::operator==", "os::bsp::value::Empty",
                    "os::bsp::value::fpgaVariant::OneTdmRleEqpNoMlhc",
                    "os::bsp::value::fpgaVariant::TwoTdm", "os::bsp::value::radiolinkMode::Rl4",
                    "os::bsp::value::radiolinkMode::Rl5", "typeinfo for os::bsp::NxuConfig",
                    "typeinfo name for os::bsp::NxuConfig", "vtable for os::bsp::NxuConfig"));
}

} // namespace
