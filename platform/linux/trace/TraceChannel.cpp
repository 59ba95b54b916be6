#include "TraceChannel.h"
#include "TraceSettings.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace qeltrace
{

TraceChannel::TraceChannel(std::string channelName, HvxTraceLevel channelLevel)
    : HvxTraceState{{0, 0}, channelLevel}, name(std::move(channelName))
{}

TraceChannel& findChannel(const std::string& name, HvxTraceLevel level)
{
    // Never destroyed: static objects of other modules trace while they are destroyed.
    static auto& mutex = *new std::mutex;
    static auto& channels = *new std::map<std::string, std::unique_ptr<TraceChannel>>;

    const std::lock_guard<std::mutex> guard(mutex);
    std::unique_ptr<TraceChannel>& channel = channels[name];
    if (!channel) {
        channel = std::make_unique<TraceChannel>(
            name, TraceSettings::instance().levelOf(name).value_or(level));
    }
    return *channel;
}

} // namespace qeltrace
