#include "BoardFacts.h"

#include "Bsp.h"
#include "HardwareCode.h"
#include "Led.h"
#include "NxuConfig.h"
#include "Products.h"
#include "Text.h"
#include "TrafficClientMode.h"
#include "WarmArea.h"

#include <algorithm>
#include <cctype>
#include <exception>

namespace facts
{

namespace
{

using namespace os::bsp; // NOLINT(google-build-using-namespace): nearly every name is the layer's

/** What a function answers, or why it does not. */
template <typename Answer> Json answerOf(const Answer& answer)
{
    try {
        return answer();
    } catch (const std::exception& error) {
        return unknown(error.what());
    }
}

Json named(int number, const std::string& name)
{
    return {{"number", number}, {"name", name}};
}

template <std::size_t Size, typename Value> Json named(const NameEntry (&table)[Size], Value value)
{
    return named(static_cast<int>(value), nameOf(table, static_cast<int>(value)));
}

Json hardwareCode(const RawBoard& board)
{
    return board.hardwareCode.isKnown() ? Json(hardwarecode::textOf(*board.hardwareCode))
                                        : unknown(board.hardwareCode.reason());
}

/** The row of the table that the layer works with, and why it is that one. */
Json variant(const RawBoard& board)
{
    const NxuHwVariant* const selected = Bsp_getNxuHwVariant();
    const char* chosen = "default";
    if (board.hardwareCode.isKnown()) {
        const bool matches = *board.hardwareCode == hardwarecode::bytesOf(selected->code);
        chosen = matches ? "code" : "fallback";
    }
    return {{"index", selected - hwVariants.data()}, {"chosenBy", chosen}};
}

/** Programs ask for an FPGA's image by its name in small letters. */
Json trafficFpga()
{
    const TrafFpgaType type = getTrafFpgaType();
    Json fpga = named(trafFpgaTypeNames, type);
    std::string name = fpga["name"];
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    const char* const path = getFpgaPath(name.c_str());
    fpga["image"] = path == nullptr ? unknown("there is no image for '" + name + "'") : Json(path);
    return fpga;
}

Json trafficClientMode()
{
    return trafficClientModeOf(getRadiolinkMode());
}

Json resetCause(const RawBoard& board)
{
    if (!board.resetCause.isKnown()) {
        return unknown(board.resetCause.reason());
    }
    return {{"number", *board.resetCause},
            {"name", nameOf(resetTypeNames, static_cast<int>(*board.resetCause))}};
}

Json settings(const RawBoard& board)
{
    if (!board.settings.isKnown()) {
        return unknown(board.settings.reason());
    }
    Json values = Json::object();
    for (const auto& [key, value] : *board.settings) {
        if (!value.empty()) {
            values[printable(key)] = printable(value);
        }
    }
    return values;
}

Json leds(const RawBoard& board)
{
    Json states = Json::object();
    for (const Led& led : board.leds) {
        if (!led.state.isKnown()) {
            states[led.name] = unknown(led.state.reason());
            continue;
        }
        // A plain file keeps the end of a longer former text, where the kernel's does not.
        const unsigned int state = Led_stateNameToStateObject(led.state->c_str());
        states[led.name] = state < NoOfLedStates
                               ? Json(Led_stateObjectToStateName(state))
                               : unknown("the state '" + printable(*led.state) + "' is none");
    }
    return states;
}

Json warmArea(const RawBoard& board)
{
    if (!board.warmArea.isKnown()) {
        return unknown(board.warmArea.reason());
    }
    if (isNotClearedYet(board)) {
        return unknown("not cleared yet: the first program that uses it will clear it");
    }
    const WarmArea area(*board.warmArea);
    Json used = Json::array();
    for (const WarmArea::Block& block : area.usedBlocks()) {
        used.push_back({{"block", block.number}, {"name", printable(block.name)}});
    }
    return {{"blocks", area.numberOfBlocks()}, {"used", used}};
}

bool countsAsCold(const RawBoard& board)
{
    return board.resetType.isKnown() && *board.resetType == ResetType::Cold;
}

Json resetType(const RawBoard& board)
{
    return board.resetType.isKnown() ? named(resetTypeNames, *board.resetType)
                                     : unknown(board.resetType.reason());
}

/** What a program would be told that asks now. */
Json slotId(const RawBoard& board)
{
    if (!board.warmArea.isKnown()) {
        return unknown("programs are told -1, of a private area: " + board.warmArea.reason());
    }
    const bool willBeCleared = !board.isWarmAreaInUse && countsAsCold(board);
    return willBeCleared ? dtcm::SlotIdNotSet
                         : WarmArea(*board.warmArea).slotId().value_or(dtcm::SlotIdNotSet);
}

} // namespace

Json document(const std::string& kind)
{
    return {{"schema", Schema}, {"kind", kind}, {"version", BSP_VERSION}};
}

std::string textOf(const Json& document)
{
    constexpr int indent = 2;
    return document.dump(indent, ' ', true, Json::error_handler_t::replace) + '\n';
}

Json unknown(const std::string& reason)
{
    return {{"unknown", reason}};
}

std::string reasonOf(const Json& fact)
{
    return fact.is_object() && fact.contains("unknown") ? fact["unknown"].get<std::string>() : "";
}

bool isNotClearedYet(const RawBoard& board)
{
    return board.warmArea.isKnown() && !board.isWarmAreaInUse && countsAsCold(board) &&
           !WarmArea(*board.warmArea).isWritten();
}

Reading<Settings> readSettings()
{
    try {
        const NxuConfig config;
        Settings values;
        for (const std::string& key : {key::FpgaVariant, key::RadiolinkMode}) {
            values[key] = config.get(key);
        }
        return values;
    } catch (const std::exception& error) {
        return Reading<Settings>::unknown(error.what());
    }
}

Json boardFacts(const RawBoard& board)
{
    Json result;
    result["hardwareCode"] = hardwareCode(board);
    result["variant"] = variant(board);
    result["product"] = named(productIdNames, getProductId());
    result["revision"] = named(hwRevisionNames, getHwRevision());
    result["boardId"] = {{"number", getBoardId()}, {"text", Bsp_getBoardIdText()}};
    result["platform"] = named(platformTypeNames, getPlatformType());
    result["dsp"] = named(dspTypeNames, getDspType());
    result["trafficFpga"] = answerOf(trafficFpga);
    result["trafficBackplane"] = named(trafficBackplaneNames, getTrafficBackplane());
    result["controlBackplane"] = named(controlBackplaneNames, getControlBackplane());
    result["switch"] = named(switchTypeNames, getSwitchType());
    result["channels"] = getNumberOfChannels();
    result["radioLinks"] = getNumberOfRadiolinks();
    result["radioLinkMode"] =
        answerOf([] { return named(radiolinkModeNames, getRadiolinkMode()); });
    result["trafficClientMode"] = answerOf(trafficClientMode);
    result["resetType"] = resetType(board);
    result["resetCause"] = resetCause(board);
    result["coldMarker"] = board.coldMarker;
    result["settings"] = settings(board);
    result["leds"] = leds(board);
    result["warmArea"] = warmArea(board);
    result["slotId"] = slotId(board);
    return result;
}

Json variantFacts(std::size_t index, const NxuHwVariant& variant)
{
    return {{"index", index},
            {"product", named(productIdNames, productOf(variant.productCode))},
            {"revision", named(hwRevisionNames, variant.hwRevision)},
            {"hardwareCode", hardwarecode::textOf(hardwarecode::bytesOf(variant.code))}};
}

} // namespace facts
