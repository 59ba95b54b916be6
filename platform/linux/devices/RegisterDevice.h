#ifndef PLATFORM_LINUX_DEVICES_REGISTERDEVICE_H
#define PLATFORM_LINUX_DEVICES_REGISTERDEVICE_H

#include "DDevIo.h"

#include <string>

namespace DDevIo
{

/** The first page of a file or of a device's memory, as 32-bit registers. */
class RegisterDevice : public Device<unsigned int>
{
public:
    /** Opens the device; null when there is none. @p mutex may be null. */
    static std::unique_ptr<RegisterDevice> open(const std::string& name,
                                                std::unique_ptr<IMutex> mutex);

    int read(std::size_t offset, unsigned int& value) override;

protected:
    explicit RegisterDevice(std::unique_ptr<IMutex> mutex);

private:
    /** Loads a register of the first page. Returns false, with the value untouched, on failure. */
    virtual bool load(std::size_t offset, unsigned int& value) const = 0;

    const std::unique_ptr<IMutex> m_mutex;
};

} // namespace DDevIo

#endif
