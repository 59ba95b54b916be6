#include "FakeBoard.h"

#include "BaseBoard.h"
#include "PlatformScope.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>

// The layer may ask while static objects are made, so the platform's come before all others.
#define FAKEBOARD_EARLY __attribute__((init_priority(200)))

namespace fakeboard
{

namespace
{

std::vector<os::bsp::NxuHwVariant> startTable()
{
    std::vector<os::bsp::NxuHwVariant> table(NumberOfVariants);
    int number = 0;
    for (os::bsp::NxuHwVariant& row : table) {
        row.hwRevision = 10 + number;
        std::fill(std::begin(row.code.word), std::end(row.code.word), 100 + number);
        ++number;
    }
    return table;
}

bool equalWords(const os::bsp::NxuHwVariant& variant, const os::bsp::NxuHwCode& code)
{
    return std::equal(std::begin(code.word), std::end(code.word), std::begin(variant.code.word));
}

Equality& equality()
{
    static Equality& instance = *new Equality(equalWords);
    return instance;
}

std::mutex& storeMutex()
{
    static std::mutex& instance = *new std::mutex;
    return instance;
}

void use()
{
    if (store().onUse) {
        store().onUse();
    }
}

} // namespace

os::bsp::NxuHwVariant& variant(std::size_t row)
{
    // The table is constant, but not the rows, which the vector made in memory of its own.
    return const_cast<os::bsp::NxuHwVariant&>( // NOLINT(cppcoreguidelines-pro-type-const-cast)
        os::bsp::hwVariants.at(row));
}

void setEquality(Equality newEquality)
{
    equality() = std::move(newEquality);
}

Eeprom& eeprom()
{
    static Eeprom& instance =
        *new Eeprom{{101, 101, 101, 101, 101, 101, 101, 101}, 0, {}, {}, 0, 0};
    return instance;
}

void setCode(const os::bsp::NxuHwCode& code)
{
    std::transform(std::begin(code.word), std::end(code.word), eeprom().bytes.begin(),
                   [](std::int32_t word) {
                       if (word < 0 || word > 255) {
                           throw std::out_of_range("no byte: " + std::to_string(word));
                       }
                       return static_cast<std::uint8_t>(word);
                   });
}

void setWord(std::size_t index, std::int32_t value)
{
    variant(1).code = {};
    variant(1).code.word[index] = value;
    setCode(variant(1).code);
}

Store& store()
{
    static Store& instance = *new Store{};
    return instance;
}

} // namespace fakeboard

int e2prom_data_read(int device, int area, uint8_t* buffer)
{
    fakeboard::Eeprom& eeprom = fakeboard::eeprom();
    ++eeprom.reads;
    eeprom.device = device;
    eeprom.area = area;
    if (eeprom.onRead) {
        eeprom.onRead();
    }
    const testsupport::PlatformScope scope;
    std::copy(eeprom.bytes.begin(), eeprom.bytes.end(), buffer);
    return eeprom.result;
}

namespace os::bsp
{

const std::vector<NxuHwVariant> hwVariants FAKEBOARD_EARLY = fakeboard::startTable();

bool operator==(const NxuHwVariant& variant, const NxuHwCode& code)
{
    const testsupport::PlatformScope scope;
    return fakeboard::equality()(variant, code);
}

namespace key
{
const std::string FpgaVariant FAKEBOARD_EARLY = "FpgaVariant";
const std::string RadiolinkMode FAKEBOARD_EARLY = "RadiolinkMode";
} // namespace key

// The texts differ only behind a NUL, so that a comparison as C strings takes one for the other.
namespace value
{
const std::string Empty FAKEBOARD_EARLY;

namespace fpgaVariant
{
const std::string TwoTdm FAKEBOARD_EARLY{"fpga\0TwoTdm", 11};
const std::string OneTdmRleEqpNoMlhc FAKEBOARD_EARLY{"fpga\0OneTdm", 11};
} // namespace fpgaVariant

namespace radiolinkMode
{
const std::string Rl4 FAKEBOARD_EARLY{"mode\0Rl4", 8};
const std::string Rl5 FAKEBOARD_EARLY{"mode\0Rl5", 8};
} // namespace radiolinkMode
} // namespace value

NxuConfig::NxuConfig()
{
    ++fakeboard::store().made;
}

NxuConfig::~NxuConfig()
{
    ++fakeboard::store().destroyed;
}

std::string NxuConfig::get(const std::string& key) const
{
    fakeboard::use();
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::mutex> guard(fakeboard::storeMutex());
    const auto found = fakeboard::store().values.find(key);
    return found == fakeboard::store().values.end() ? value::Empty : found->second;
}

bool NxuConfig::set(const std::string& key, const std::string& value)
{
    fakeboard::use();
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::mutex> guard(fakeboard::storeMutex());
    fakeboard::store().calls.push_back("set " + key + ' ' + value);
    if (!fakeboard::store().refuses) {
        fakeboard::store().values[key] = value;
    }
    return !fakeboard::store().refuses;
}

bool NxuConfig::clear(const std::string& key)
{
    fakeboard::use();
    const testsupport::PlatformScope scope;
    const std::lock_guard<std::mutex> guard(fakeboard::storeMutex());
    fakeboard::store().calls.push_back("clear " + key);
    if (!fakeboard::store().refuses) {
        fakeboard::store().values.erase(key);
    }
    return !fakeboard::store().refuses;
}

} // namespace os::bsp
