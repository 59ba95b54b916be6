/**
 * @file
 * @brief A board for tests: any table of hardware variants, any EEPROM, any key/value store.
 *
 * Linking it to a test replaces the platform libraries. A test case describes the board before the
 * layer asks for the first time; everything may also be used while static objects are made.
 */
#ifndef TESTS_SUPPORT_FAKEBOARD_H
#define TESTS_SUPPORT_FAKEBOARD_H

#include "NxuConfig.h"
#include "NxuHwVariant.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace fakeboard
{

constexpr std::size_t NumberOfVariants = 20;

/**
 * A row of the variant table, to be changed at will. At start row i has the hardware revision
 * 10 + i, the product code 0 and a code of eight words 100 + i; no query knows these.
 */
os::bsp::NxuHwVariant& variant(std::size_t row);

/** Replaces the comparison of a variant with a hardware code; at first all words must be equal. */
using Equality = std::function<bool(const os::bsp::NxuHwVariant&, const os::bsp::NxuHwCode&)>;
void setEquality(Equality equality);

/** The EEPROM. At start it holds the code of variant 1. */
struct Eeprom
{
    std::array<std::uint8_t, 8> bytes; /**< Given out at every read, also at one that fails. */
    int result;                        /**< Result of a read. */
    std::function<void()> onRead;      /**< Called in every read before anything else. */
    std::atomic<int> reads;            /**< Number of reads so far. */
    int device;                        /**< First argument of the last read. */
    int area;                          /**< Second argument of the last read. */
};
Eeprom& eeprom();

/** Puts a code into the EEPROM; its words must be bytes. */
void setCode(const os::bsp::NxuHwCode& code);

/** Gives the EEPROM and variant 1 a code of zeros but for one word, which must be a byte. */
void setWord(std::size_t index, std::int32_t value);

/** The key/value store. */
struct Store
{
    std::map<std::string, std::string> values;
    bool refuses;                   /**< Makes set and clear fail. */
    std::function<void()> onUse;    /**< Called in every get, set and clear before anything else. */
    std::atomic<int> made;          /**< NxuConfig objects made so far. */
    std::atomic<int> destroyed;     /**< NxuConfig objects destroyed so far. */
    std::vector<std::string> calls; /**< Every set and clear, as "set KEY VALUE" or "clear KEY". */
};
Store& store();

} // namespace fakeboard

#endif
