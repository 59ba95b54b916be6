#ifndef PLATFORM_LINUX_DEVICES_REGISTERDEVICE_H
#define PLATFORM_LINUX_DEVICES_REGISTERDEVICE_H

#include "DDevIo.h"
#include "FileDescriptor.h"

#include <string>

#include <sys/types.h>

namespace DDevIo
{

/** The first page of a file or of a device's memory, as 32-bit registers. */
class RegisterDevice : public Device<unsigned int>
{
public:
    /** Opens and maps the file; @p mutex may be null. */
    static std::unique_ptr<RegisterDevice> open(const std::string& path,
                                                std::unique_ptr<IMutex> mutex);
    ~RegisterDevice() override;
    RegisterDevice(const RegisterDevice&) = delete;
    RegisterDevice& operator=(const RegisterDevice&) = delete;

    int read(std::size_t offset, unsigned int& value) override;

private:
    RegisterDevice(FileDescriptor file, const void* registers, std::size_t size,
                   std::unique_ptr<IMutex> mutex);
    bool has(std::size_t offset) const;

    const FileDescriptor m_file;
    const void* const m_registers;
    const std::size_t m_size;
    const std::unique_ptr<IMutex> m_mutex;
};

} // namespace DDevIo

#endif
