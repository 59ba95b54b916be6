#include "Hardware.h"
#include "Text.h"
#include "findings/Subjects.h"

namespace
{

std::string firstLine(const std::string& text)
{
    return printable(text.substr(0, text.find('\n')));
}

} // namespace

void judgeLeds(const Evidence& evidence, Diagnosis& diagnosis)
{
    for (const LedEvidence& led : evidence.leds) {
        if (!led.isThere) {
            diagnosis.add("led-missing", {{"led", led.name}, {"place", led.directory}});
        } else if (!led.hasState && !led.hasTrigger) {
            diagnosis.add("led-no-trigger",
                          {{"led", led.name},
                           {"place", led.directory + '/' + hardware::LedTriggerFile},
                           {"triggers", firstLine(led.trigger.isKnown() ? *led.trigger
                                                                        : led.trigger.reason())}});
        } else if (led.hasState ? !led.isStateWritable : !led.isTriggerWritable) {
            diagnosis.add("led-not-writable",
                          {{"led", led.name},
                           {"place", led.directory + '/' +
                                         (led.hasState ? hardware::LedStateFile
                                                       : hardware::LedTriggerFile)}});
        }
    }
}
