/**
 * @file
 * @brief All that the layer answers of a board, as one document: docs/diagnosis.md describes it,
 *        docs/bsp-diag-1.schema.json is its schema.
 */
#ifndef TOOLS_COMMON_BOARDFACTS_H
#define TOOLS_COMMON_BOARDFACTS_H

#include "BspEnumerations.h"
#include "NxuHwVariant.h"
#include "Reading.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/** A document whose entries stay in the order in which they were made. */
using Json = nlohmann::ordered_json;

namespace facts
{

/** Written into every document; it changes when a reader of before would go wrong. */
constexpr const char* Schema = "bsp-diag/1";

/** The value of a setting that is not set is empty. */
using Settings = std::map<std::string, std::string>;

struct Led
{
    std::string name;
    Reading<std::string> state; /**< As the driver shows it. */
};

/** The settings that the layer asks for, or why the store does not say. */
Reading<Settings> readSettings();

/** What is read of a board, and not answered by the layer. */
struct RawBoard
{
    Reading<std::string> hardwareCode;     /**< The bytes of the EEPROM. */
    Reading<os::bsp::ResetType> resetType; /**< As the layer answers on the board. */
    Reading<std::uint32_t> resetCause;     /**< The register's word. */
    bool coldMarker = false;               /**< Whether there is the mark of a cold restart. */
    Reading<Settings> settings;
    std::vector<Led> leds;
    Reading<std::string> warmArea; /**< Its 32768 bytes. */
    bool isWarmAreaInUse = false;  /**< Whether there is the semaphore of its users. */
};

/** A document of that kind, with nothing in it but the schema, the kind and this version. */
Json document(const std::string& kind);

/** The text of a document, whatever bytes are in it. */
std::string textOf(const Json& document);

/**
 * What a board is: the answers of the layer, which this process asks, and what was read.
 *
 * The layer's answers about its board hold for the life of a process.
 */
Json boardFacts(const RawBoard& board);

/** The same of a row of the table of hardware variants. */
Json variantFacts(std::size_t index, const os::bsp::NxuHwVariant& variant);

/** What stands for something that is not known. */
Json unknown(const std::string& reason);
/** The reason, when this stands for something that is not known; else empty. */
std::string reasonOf(const Json& fact);

/** Whether the area holds what power-up left there, and the first program will clear it. */
bool isNotClearedYet(const RawBoard& board);

} // namespace facts

#endif
