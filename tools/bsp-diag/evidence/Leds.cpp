#include "evidence/Leds.h"

#include "FileDescriptor.h"
#include "Hardware.h"
#include "Led.h"
#include "Text.h"
#include "evidence/SharedFile.h"

#include <cerrno>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

namespace
{

Reading<std::string> contentsOf(const std::string& path)
{
    constexpr std::size_t pageOfTheKernel = 4096;
    const syscalls::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        return Reading<std::string>::unknown("cannot read " + path + ": " + errorText(errno));
    }
    return bytesOf(file, pageOfTheKernel);
}

bool isListed(const std::string& triggers)
{
    std::istringstream words(triggers);
    for (std::string word; words >> word;) {
        if (word == hardware::LedTrigger || word == std::string("[") + hardware::LedTrigger + ']') {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<LedEvidence> lookAtLeds(const Places& places)
{
    std::vector<LedEvidence> leds;
    for (unsigned int number = 0; number < NoOfLeds; ++number) {
        LedEvidence led;
        led.name = Led_objectToName(number);
        led.directory = places.leds + '/' + led.name;
        const std::string triggerFile = led.directory + '/' + hardware::LedTriggerFile;
        const std::string state = led.directory + '/' + hardware::LedStateFile;
        led.isThere = ::access(led.directory.c_str(), F_OK) == 0;
        led.isTriggerWritable = ::access(triggerFile.c_str(), W_OK) == 0;
        led.trigger = contentsOf(triggerFile);
        led.hasTrigger = led.trigger.isKnown() && isListed(*led.trigger);
        led.hasState = ::access(state.c_str(), F_OK) == 0;
        led.isStateWritable = ::access(state.c_str(), W_OK) == 0;
        led.state = contentsOf(state);
        leds.push_back(led);
    }
    return leds;
}
