#include "TraceChannel.h"
#include "TraceSettings.h"

#include <atomic>
#include <memory>
#include <utility>

namespace qeltrace
{

namespace
{

// Only ever grows, so nobody needs a lock, which a process forked at the wrong moment would find
// taken for ever.
std::atomic<TraceChannel*> newestChannel{nullptr};

TraceChannel* search(TraceChannel* channel, const std::string& name)
{
    while (channel != nullptr && channel->name != name) {
        channel = channel->next;
    }
    return channel;
}

} // namespace

TraceChannel::TraceChannel(std::string channelName, HvxTraceLevel channelLevel)
    : HvxTraceState{{0, 0}, channelLevel}, name(std::move(channelName))
{}

bool TraceChannel::writes(HvxTraceLevel messageLevel) const
{
    return __atomic_load_n(&level, __ATOMIC_RELAXED) >= messageLevel;
}

TraceChannel& findChannel(const std::string& name, HvxTraceLevel level)
{
    TraceChannel* newest = newestChannel.load();
    if (TraceChannel* const found = search(newest, name)) {
        return *found;
    }
    auto made = std::make_unique<TraceChannel>(
        name, TraceSettings::instance().levelOf(name).value_or(level));
    do {
        // Another thread may have made it meanwhile.
        if (TraceChannel* const found = search(newest, name)) {
            return *found;
        }
        made->next = newest;
    } while (!newestChannel.compare_exchange_weak(newest, made.get()));
    return *made.release();
}

} // namespace qeltrace
