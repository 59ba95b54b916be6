#ifndef PLATFORM_LINUX_CONFIG_STORECREATION_H
#define PLATFORM_LINUX_CONFIG_STORECREATION_H

#include <string>

namespace nxuconfig
{

/**
 * Makes the store with its first value.
 *
 * It is made under another name and then moved into place, so that nobody ever sees half a store;
 * when the call returns it survives a power cut.
 *
 * @return false when another process made the store meanwhile
 * @throws std::exception with nothing changed
 */
bool createStore(const std::string& path, const std::string& key, const std::string& value);

} // namespace nxuconfig

#endif
