#include "Bsp.h"

#include "BspTrace.h"
#include "HvxMessage.h"
#include "NxuConfig.h"

#include <mutex>

namespace os::bsp
{

RadiolinkMode getRadiolinkMode()
{
    static RadiolinkMode mode = RadiolinkMode::Rl4;
    static std::once_flag once;
    std::call_once(once, [] {
        const NxuConfig config;
        if (config.get(key::RadiolinkMode) == value::radiolinkMode::Rl5) {
            mode = RadiolinkMode::Rl5;
        }
    });
    return mode;
}

bool setRadiolinkMode(RadiolinkMode mode)
{
    if (mode != RadiolinkMode::Rl4 && mode != RadiolinkMode::Rl5) {
        TRACE_MESSAGE(
            bspTrace, trace::Error,
            "Unsupported radio-link mode: " << Bsp_radiolinkModeName(static_cast<int>(mode)));
        return false;
    }
    NxuConfig config;
    return config.set(key::RadiolinkMode, mode == RadiolinkMode::Rl5 ? value::radiolinkMode::Rl5
                                                                     : value::radiolinkMode::Rl4);
}

bool clearRadiolinkMode()
{
    NxuConfig config;
    return config.clear(key::RadiolinkMode);
}

} // namespace os::bsp
