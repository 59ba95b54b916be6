#ifndef PLATFORM_LINUX_SETTINGS_SETTINGSCHANGE_H
#define PLATFORM_LINUX_SETTINGS_SETTINGSCHANGE_H

#include "Deadline.h"
#include "SettingsText.h"

#include <functional>
#include <string>

namespace settings
{

/**
 * Changes a settings file, which is made if there is none; durable on return.
 *
 * The file is replaced by a new one that has its owner and mode, so that everybody finds the old or
 * the new one. Processes change it one after the other; no two threads of one may call this at
 * once.
 *
 * @param path      the file, or a link to it
 * @param edit      what to do to the text
 * @param deadline  how long to wait for other processes
 * @throws std::exception with nothing changed
 */
void change(const std::string& path, const std::function<void(SettingsText&)>& edit,
            const Deadline& deadline);

} // namespace settings

#endif
