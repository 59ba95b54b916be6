#include "BoardFacts.h"
#include "Hardware.h"
#include "HardwareCode.h"
#include "evidence/BoardFiles.h"
#include "findings/Subjects.h"

#include <filesystem>

namespace
{

/** The size of the file behind the EEPROM, when it is one and too short. */
std::optional<std::uintmax_t> sizeWhenShort()
{
    const std::optional<std::string> file = eepromFile();
    std::error_code error;
    if (!file || !std::filesystem::is_regular_file(*file, error)) {
        return std::nullopt;
    }
    const std::uintmax_t size = std::filesystem::file_size(*file, error);
    return !error && size < hardware::HardwareCodeSize ? std::optional(size) : std::nullopt;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

} // namespace

void judgeEeprom(const Evidence& evidence, Diagnosis& diagnosis)
{
    const EepromAnswer& answer = eepromAnswer();
    if (answer.result != 0) {
        const std::string place = printable(eepromFile().value_or("eeprom"));
        if (const auto size = sizeWhenShort()) {
            diagnosis.add("eeprom-short", {{"place", place}, {"size", std::to_string(*size)}});
        } else {
            diagnosis.add("eeprom-unreadable",
                          {{"place", place}, {"result", std::to_string(answer.result)}});
        }
        return;
    }
    const std::string code = hardwarecode::textOf(*hardwareCode());
    if (!evidence.identity.isVariantKnown) {
        diagnosis.add("eeprom-unknown-code", {{"code", code}});
    }
    if (!evidence.identity.unknownWords.empty()) {
        diagnosis.add("eeprom-unknown-word",
                      {{"code", code}, {"words", joined(evidence.identity.unknownWords)}});
    }
}
