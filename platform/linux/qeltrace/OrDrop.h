#ifndef PLATFORM_LINUX_QELTRACE_ORDROP_H
#define PLATFORM_LINUX_QELTRACE_ORDROP_H

#include <exception>

namespace qeltrace
{

/** Does what may run out of memory. Returns whether it was done; what was not is dropped. */
template <typename Work> bool doOrDrop(Work work)
{
    try {
        work();
        return true;
    } catch (const std::exception&) { // Not "...", which would stop the end of a cancelled thread.
        return false;
    }
}

} // namespace qeltrace

#endif
