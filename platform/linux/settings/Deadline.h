#ifndef PLATFORM_LINUX_SETTINGS_DEADLINE_H
#define PLATFORM_LINUX_SETTINGS_DEADLINE_H

#include <chrono>
#include <thread>

namespace settings
{

/** How long something is tried again and again. */
class Deadline
{
public:
    explicit Deadline(std::chrono::milliseconds patience)
        : m_end(std::chrono::steady_clock::now() + patience)
    {}

    /** Waits until the next try; false when there is to be none. */
    bool wait() const
    {
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        return std::chrono::steady_clock::now() < m_end;
    }

private:
    const std::chrono::steady_clock::time_point m_end;
};

} // namespace settings

#endif
