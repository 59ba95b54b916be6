#include "NxuConfig.h"
#include "Text.h"
#include "findings/Subjects.h"

#include <set>

namespace
{

namespace key = os::bsp::key;
namespace value = os::bsp::value;

bool isValue(const std::string& name, const std::string& text)
{
    const std::set<std::string> values =
        name == key::RadiolinkMode
            ? std::set<std::string>{value::radiolinkMode::Rl4, value::radiolinkMode::Rl5}
            : std::set<std::string>{value::fpgaVariant::TwoTdm,
                                    value::fpgaVariant::OneTdmRleEqpNoMlhc};
    return text.empty() || values.count(text) != 0;
}

} // namespace

void judgeSettings(const Evidence& evidence, Diagnosis& diagnosis)
{
    if (!evidence.settings.isKnown()) {
        const std::string& reason = evidence.settings.reason();
        const bool isFormer = reason.find("of an earlier version") != std::string::npos;
        diagnosis.add(isFormer ? "settings-former-format" : "settings-damaged",
                      {{"reason", printable(reason)}});
    } else {
        for (const auto& [name, text] : *evidence.settings) {
            if (!isValue(name, text)) {
                diagnosis.add("settings-no-mode", {{"key", name}, {"value", printable(text)}});
            }
        }
    }
    if (!evidence.whySettingsNotWritable) {
        diagnosis.miss("whether the settings can be changed: the board's own library does not say");
    } else if (!evidence.whySettingsNotWritable->empty()) {
        diagnosis.add("settings-not-writable", {{"reason", *evidence.whySettingsNotWritable}});
    }
}
