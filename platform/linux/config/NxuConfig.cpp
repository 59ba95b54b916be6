#include "NxuConfig.h"
#include "ConfigStore.h"
#include "ConfigTrace.h"
#include "GtMessage.h"

namespace nxuconfig
{

GT_TraceRecord configTrace{TraceRecordStartLevel, "bsp.config"};

} // namespace nxuconfig

namespace os::bsp
{

using nxuconfig::ConfigStore;

namespace
{

/** Whether the work could be done; callers are not told what was in the way, but the trace is. */
template <typename Work> bool succeeds(const char* name, const std::string& key, const Work& work)
{
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        TRACE_PRINTF(nxuconfig::configTrace, trace::Error, "%s(%s) failed: %s", name, key.c_str(),
                     error.what());
        return false;
    }
}

} // namespace

NxuConfig::NxuConfig() = default;

NxuConfig::~NxuConfig() = default;

std::string NxuConfig::get(const std::string& key) const
{
    return ConfigStore::instance().get(key).value_or(value::Empty);
}

bool NxuConfig::set(const std::string& key, const std::string& value)
{
    return succeeds(__func__, key, [&] { ConfigStore::instance().set(key, value); });
}

bool NxuConfig::clear(const std::string& key)
{
    return succeeds(__func__, key, [&] { ConfigStore::instance().clear(key); });
}

} // namespace os::bsp
