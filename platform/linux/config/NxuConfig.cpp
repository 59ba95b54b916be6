#include "NxuConfig.h"
#include "ConfigStore.h"

namespace os
{
namespace bsp
{

using nxuconfig::ConfigStore;

namespace
{

/** Whether the work could be done; callers are not told what was in the way. */
template <typename Work> bool succeeds(const Work& work)
{
    try {
        work();
        return true;
    } catch (const std::exception&) {
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
    return succeeds([&] { ConfigStore::instance().set(key, value); });
}

bool NxuConfig::clear(const std::string& key)
{
    return succeeds([&] { ConfigStore::instance().clear(key); });
}

} // namespace bsp
} // namespace os
