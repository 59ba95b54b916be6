/**
 * @file
 * @brief Describes the fake devices of a program by its environment.
 *
 * FAKE_DTCM         "missing" or "unmappable"
 * FAKE_RESET_CAUSE  word of the reset register, or "throws"
 */
#include "FakeDevices.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace
{

std::string variable(const char* name)
{
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

const bool devicesDescribed = [] {
    if (variable("FAKE_DTCM") == "missing") {
        fakedevices::dtcm().kind = fakedevices::Dtcm::Missing;
    } else if (variable("FAKE_DTCM") == "unmappable") {
        fakedevices::dtcm().kind = fakedevices::Dtcm::Unmappable;
    }
    const std::string cause = variable("FAKE_RESET_CAUSE");
    if (cause == "throws") {
        fakedevices::control().onCreate = [] { throw std::runtime_error("no bus"); };
    } else if (!cause.empty()) {
        fakedevices::control().word = static_cast<std::uint32_t>(std::stoul(cause));
    }
    return true;
}();

} // namespace
