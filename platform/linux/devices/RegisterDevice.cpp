#include "RegisterDevice.h"

#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace DDevIo
{

static_assert(sizeof(unsigned int) == 4, "registers are 32 bits wide");

std::unique_ptr<RegisterDevice> RegisterDevice::open(const std::string& path,
                                                     std::unique_ptr<IMutex> mutex)
{
    // Registers are only read: a board that cannot be written still has them.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file.isOpen()) {
        return nullptr;
    }
    const auto size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* const registers = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.get(), 0);
    if (registers == MAP_FAILED) {
        return nullptr;
    }
    return std::unique_ptr<RegisterDevice>(
        new RegisterDevice(std::move(file), registers, size, std::move(mutex)));
}

RegisterDevice::RegisterDevice(FileDescriptor file, const void* registers, std::size_t size,
                               std::unique_ptr<IMutex> mutex)
    : m_file(std::move(file)), m_registers(registers), m_size(size), m_mutex(std::move(mutex))
{}

RegisterDevice::~RegisterDevice()
{
    ::munmap(const_cast<void*>(m_registers), // NOLINT(cppcoreguidelines-pro-type-const-cast)
             m_size);
}

int RegisterDevice::read(std::size_t offset, unsigned int& value)
{
    std::unique_lock<IMutex> lock;
    if (m_mutex) {
        lock = std::unique_lock<IMutex>(*m_mutex);
    }
    if (!has(offset)) {
        return -1;
    }
    const auto* registers = static_cast<const volatile unsigned int*>(m_registers);
    value = registers[offset / sizeof(unsigned int)];
    return 0;
}

/** Whether the register can be read now; a file may have become shorter since it was mapped. */
bool RegisterDevice::has(std::size_t offset) const
{
    if (offset % sizeof(unsigned int) != 0 || offset >= m_size) {
        return false;
    }
    struct stat status
    {};
    if (::fstat(m_file.get(), &status) != 0) {
        return false;
    }
    return !S_ISREG(status.st_mode) ||
           status.st_size >= static_cast<off_t>(offset + sizeof(unsigned int));
}

} // namespace DDevIo
