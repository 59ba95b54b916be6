#include "Capsule.h"

#include "Hardware.h"
#include "Text.h"
#include "WarmLayout.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace capsule
{

namespace
{

using os::bsp::dtcm::AreaSize;
using os::bsp::dtcm::Block;

/** Of what is no capsule, in a message. */
constexpr std::size_t LongestQuote = 32;

template <typename Value> Json jsonOf(const Reading<Value>& reading)
{
    return reading.isKnown() ? Json(*reading) : facts::unknown(reading.reason());
}

/** Bytes that need be no text. */
Json hexJson(const Reading<std::string>& bytes)
{
    return bytes.isKnown() ? Json(hexText(*bytes)) : facts::unknown(bytes.reason());
}

/** Bytes that are text, unless somebody has damaged them. */
Json textJson(const Reading<std::string>& text)
{
    if (!text.isKnown()) {
        return facts::unknown(text.reason());
    }
    const bool isText = std::none_of(text->begin(), text->end(), [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return value > '~' || (value < ' ' && byte != '\n' && byte != '\t');
    });
    return isText ? Json{{"text", *text}} : Json{{"hex", hexText(*text)}};
}

Json warmAreaJson(const Contents& contents)
{
    if (!contents.warmArea.isKnown()) {
        return facts::unknown(contents.warmArea.reason());
    }
    Json blocks = Json::array();
    for (std::size_t offset = 0; offset < contents.warmArea->size(); offset += sizeof(Block)) {
        blocks.push_back(hexText(contents.warmArea->substr(offset, sizeof(Block))));
    }
    return {{"taken", contents.warmAreaTaken}, {"blocks", blocks}};
}

std::string bytesOf(const std::string& hex)
{
    const std::optional<std::string> bytes = bytesOfHex(hex);
    if (!bytes) {
        throw std::runtime_error("'" + printable(hex.substr(0, LongestQuote)) +
                                 "' are no hexadecimal digits of bytes");
    }
    return *bytes;
}

constexpr std::uint64_t MaxSemaphoreValue = std::numeric_limits<int>::max();

/** The library would cut a number of another kind, without a word. */
template <typename Number>
Number numberOf(const Json& json, std::uint64_t most = std::numeric_limits<Number>::max())
{
    if (!json.is_number_unsigned() || json.get<std::uint64_t>() > most) {
        throw std::runtime_error(json.dump() + " is no number from 0 to " + std::to_string(most));
    }
    return json.get<Number>();
}

Reading<std::uint32_t>
numberReadingOf(const Json& json, std::uint64_t most = std::numeric_limits<std::uint32_t>::max())
{
    using Number = Reading<std::uint32_t>;
    const std::string reason = facts::reasonOf(json);
    return reason.empty() ? Number(numberOf<std::uint32_t>(json, most)) : Number::unknown(reason);
}

Reading<std::string> bytesReadingOf(const Json& json)
{
    using Bytes = Reading<std::string>;
    const std::string reason = facts::reasonOf(json);
    return reason.empty() ? Bytes(bytesOf(json.get<std::string>())) : Bytes::unknown(reason);
}

Reading<std::string> textReadingOf(const Json& json)
{
    const std::string reason = facts::reasonOf(json);
    if (!reason.empty()) {
        return Reading<std::string>::unknown(reason);
    }
    return json.contains("text") ? json["text"].get<std::string>()
                                 : bytesOf(json.at("hex").get<std::string>());
}

void requireSize(const Reading<std::string>& bytes, std::size_t size, const char* what)
{
    if (bytes.isKnown() && bytes->size() != size) {
        throw std::runtime_error(std::string(what) + " has " + std::to_string(bytes->size()) +
                                 " bytes instead of " + std::to_string(size));
    }
}

void parseWarmArea(const Json& json, Contents& contents)
{
    const std::string reason = facts::reasonOf(json);
    if (!reason.empty()) {
        contents.warmArea = Reading<std::string>::unknown(reason);
        return;
    }
    std::string area;
    for (const Json& block : json.at("blocks")) {
        area += bytesOf(block.get<std::string>());
    }
    contents.warmArea = area;
    contents.warmAreaTaken = json.at("taken").get<std::string>();
}

Contents parseContents(const Json& json)
{
    Contents contents;
    contents.eeprom = bytesReadingOf(json.at("eeprom"));
    requireSize(contents.eeprom, hardware::HardwareCodeSize, "the EEPROM");
    parseWarmArea(json.at("warmArea"), contents);
    requireSize(contents.warmArea, AreaSize, "the warm area");
    contents.resetCause = numberReadingOf(json.at("resetCause"));
    contents.coldMarker = json.at("coldMarker").get<bool>();
    contents.settings = textReadingOf(json.at("settings"));
    for (const auto& [name, led] : json.at("leds").items()) {
        contents.leds.push_back(
            {name, textReadingOf(led.at("trigger")), textReadingOf(led.at("state"))});
    }
    for (const Json& file : json.at("sharedMemory")) {
        contents.sharedFiles.push_back({file.at("name"), numberOf<std::uint64_t>(file.at("size")),
                                        numberOf<unsigned int>(file.at("mode")),
                                        numberOf<unsigned int>(file.at("user"))});
    }
    contents.semaphore = numberReadingOf(json.at("semaphore"), MaxSemaphoreValue);
    for (const Json& mutex : json.at("heldMutexes")) {
        contents.heldMutexes.push_back(mutex);
    }
    return contents;
}

/**
 * The document, unless it is deeper or has more entries than any capsule: what the library makes
 * of such a one takes it very long.
 */
Json documentOf(const std::string& text)
{
    constexpr int deepest = 8;
    constexpr unsigned int most = 10000;
    unsigned int entries = 0;
    return Json::parse(text, [&](int depth, Json::parse_event_t /*event*/, const Json& /*entry*/) {
        if (depth > deepest || ++entries > most) {
            throw std::runtime_error("it is no capsule: it has too many entries");
        }
        return true;
    });
}

} // namespace

Json jsonOf(const Contents& contents)
{
    Json json;
    json["eeprom"] = hexJson(contents.eeprom);
    json["resetCause"] = jsonOf(contents.resetCause);
    json["coldMarker"] = contents.coldMarker;
    json["settings"] = textJson(contents.settings);
    json["leds"] = Json::object();
    for (const Led& led : contents.leds) {
        json["leds"][led.name] = {{"trigger", textJson(led.trigger)},
                                  {"state", textJson(led.state)}};
    }
    json["sharedMemory"] = Json::array();
    for (const SharedFile& file : contents.sharedFiles) {
        json["sharedMemory"].push_back(
            {{"name", file.name}, {"size", file.size}, {"mode", file.mode}, {"user", file.user}});
    }
    json["semaphore"] = jsonOf(contents.semaphore);
    json["heldMutexes"] = contents.heldMutexes;
    json["warmArea"] = warmAreaJson(contents);
    return json;
}

Contents parse(const std::string& text)
{
    try {
        const Json document = documentOf(text);
        if (document.at("schema") != facts::Schema || document.at("kind") != "capsule") {
            throw std::runtime_error(std::string("it is no capsule of ") + facts::Schema);
        }
        return parseContents(document.at("contents"));
    } catch (const Json::exception& error) {
        throw std::runtime_error("it is no capsule: " + printable(error.what()));
    }
}

} // namespace capsule
