#include "report/InfoText.h"

#include <iomanip>
#include <string>

namespace
{

/** A line, and where its fact is in the document. */
struct Line
{
    const char* subject;
    const char* key;
};

constexpr Line lines[] = {
    {"Hardware code", "hardwareCode"},
    {"Variant", "variant"},
    {"Product", "product"},
    {"Revision", "revision"},
    {"Board ID", "boardId"},
    {"Platform", "platform"},
    {"DSP", "dsp"},
    {"Traffic FPGA", "trafficFpga"},
    {"Traffic backplane", "trafficBackplane"},
    {"Control backplane", "controlBackplane"},
    {"Switch", "switch"},
    {"Channels", "channels"},
    {"Radio links", "radioLinks"},
    {"Radio-link mode", "radioLinkMode"},
    {"Traffic client mode", "trafficClientMode"},
    {"Reset type", "resetType"},
    {"Reset cause", "resetCause"},
    {"Cold marker", "coldMarker"},
    {"Settings", "settings"},
    {"LED", "leds"},
    {"Slot id", "slotId"},
    {"Warm area", "warmArea"},
    {"Kernel", "kernel"},
    {"Boot loader", "bootLoader"},
};

void write(std::ostream& out, const std::string& subject, const std::string& fact)
{
    constexpr int width = 21;
    out << std::setw(width) << std::left << subject << fact << '\n';
}

std::string plain(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/** Why the layer works with that variant. */
std::string chosenBy(const std::string& what)
{
    if (what == "code") {
        return "";
    }
    return what == "default" ? " (the default, as the code is not known)"
                             : " (the fallback, as no variant has the code)";
}

/** A fact in one line. */
std::string factText(const Json& fact)
{
    const std::string reason = facts::reasonOf(fact);
    if (!reason.empty()) {
        return "unknown: " + reason;
    }
    if (fact.is_boolean()) {
        return fact.get<bool>() ? "present" : "absent";
    }
    if (!fact.is_object()) {
        return plain(fact);
    }
    if (fact.contains("chosenBy")) {
        return plain(fact["index"]) + chosenBy(fact["chosenBy"]);
    }
    if (fact.contains("image")) {
        const std::string why = facts::reasonOf(fact["image"]);
        return plain(fact["name"]) + " (" + plain(fact["number"]) + "), " +
               (why.empty() ? plain(fact["image"]) : why);
    }
    if (fact.contains("productNumber")) {
        return plain(fact["productNumber"]) + " " + plain(fact["rState"]);
    }
    if (fact.contains("rState")) {
        return plain(fact["rState"]);
    }
    const char* const text = fact.contains("text") ? "text" : "name";
    return plain(fact[text]) + " (" + plain(fact["number"]) + ")";
}

void writeWarmArea(std::ostream& out, const Json& area)
{
    write(out, "Warm area",
          std::to_string(area["used"].size()) + " of " + plain(area["blocks"]) + " blocks used");
    for (const Json& block : area["used"]) {
        write(out, "Block " + plain(block["block"]), plain(block["name"]));
    }
}

void writeSettings(std::ostream& out, const Json& settings)
{
    std::string subject = "Settings";
    if (settings.empty()) {
        write(out, subject, "empty");
    }
    for (const auto& [key, value] : settings.items()) {
        write(out, subject, key + " = " + plain(value));
        subject.clear();
    }
}

} // namespace

void writeInfo(std::ostream& out, const Json& document)
{
    write(out, "Version", plain(document["version"]));
    const Json& board = document["board"];
    for (const Line& line : lines) {
        const std::string key = line.key;
        if (!board.contains(key)) {
            continue;
        }
        const Json& fact = board[key];
        const bool isKnown = facts::reasonOf(fact).empty();
        if (isKnown && key == "leds") {
            for (const auto& [name, state] : fact.items()) {
                write(out, "LED " + name, factText(state));
            }
        } else if (isKnown && key == "settings") {
            writeSettings(out, fact);
        } else if (isKnown && key == "warmArea") {
            writeWarmArea(out, fact);
        } else {
            write(out, line.subject, factText(fact));
        }
    }
}
