/**
 * @file
 * @brief Describes the fake board of a program by its environment, for tests that run the program.
 *
 * FAKE_BOARD_CODE            eight numbers: the code in the EEPROM, and of variant 1
 * FAKE_BOARD_READ_RESULT     result of reading the EEPROM
 * FAKE_BOARD_PRODUCT_CODE    product code of variant 1
 * FAKE_BOARD_HW_REVISION     hardware revision of variant 1
 * FAKE_BOARD_FPGA_VARIANT    stored setting: TwoTdm, OneTdmRleEqpNoMlhc or any text
 * FAKE_BOARD_RADIOLINK_MODE  stored setting: Rl4, Rl5 or any text
 * FAKE_BOARD_STORE           "refuses" or "throws"
 * FAKE_BOARD_STORE_CALLS     file that gets every set and clear at the program's end, a line each
 */
#include "FakeBoard.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace
{

/** Calls a function with the value of a variable that is set. */
template <typename Function> void with(const char* name, Function function)
{
    const char* value = std::getenv(name);
    if (value != nullptr) {
        function(std::string(value));
    }
}

void setCode(const std::string& text)
{
    std::istringstream numbers(text);
    os::bsp::NxuHwCode code{};
    std::copy(std::istream_iterator<std::int32_t>(numbers), {}, std::begin(code.word));
    fakeboard::variant(1).code = code;
    fakeboard::setCode(code);
}

std::string fpgaVariant(const std::string& name)
{
    if (name == "TwoTdm") {
        return os::bsp::value::fpgaVariant::TwoTdm;
    }
    return name == "OneTdmRleEqpNoMlhc" ? os::bsp::value::fpgaVariant::OneTdmRleEqpNoMlhc : name;
}

std::string radiolinkMode(const std::string& name)
{
    if (name == "Rl4") {
        return os::bsp::value::radiolinkMode::Rl4;
    }
    return name == "Rl5" ? os::bsp::value::radiolinkMode::Rl5 : name;
}

void fillStore()
{
    fakeboard::Store& store = fakeboard::store();
    with("FAKE_BOARD_FPGA_VARIANT", [&](const std::string& name) {
        store.values[os::bsp::key::FpgaVariant] = fpgaVariant(name);
    });
    with("FAKE_BOARD_RADIOLINK_MODE", [&](const std::string& name) {
        store.values[os::bsp::key::RadiolinkMode] = radiolinkMode(name);
    });
    with("FAKE_BOARD_STORE", [&](const std::string& behaviour) {
        store.refuses = behaviour == "refuses";
        if (behaviour == "throws") {
            store.onUse = [] { throw std::runtime_error("the store cannot be read"); };
        }
    });
}

void writeStoreCalls()
{
    with("FAKE_BOARD_STORE_CALLS", [](const std::string& path) {
        std::ofstream file(path);
        for (const std::string& call : fakeboard::store().calls) {
            file << call << '\n';
        }
    });
}

const bool boardDescribed = [] {
    with("FAKE_BOARD_CODE", setCode);
    with("FAKE_BOARD_READ_RESULT",
         [](const std::string& text) { fakeboard::eeprom().result = std::stoi(text); });
    with("FAKE_BOARD_PRODUCT_CODE",
         [](const std::string& text) { fakeboard::variant(1).productCode = std::stoi(text); });
    with("FAKE_BOARD_HW_REVISION",
         [](const std::string& text) { fakeboard::variant(1).hwRevision = std::stoi(text); });
    fillStore();
    return std::atexit(writeStoreCalls) == 0;
}();

} // namespace
