#include "RegisterDevice.h"
#include "DeviceFile.h"

#include <cerrno>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace DDevIo
{

namespace
{

static_assert(sizeof(unsigned int) == 4, "registers are 32 bits wide");

std::size_t pageSize()
{
    return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/** A file's contents. They are read, not mapped: a file can become shorter at any time. */
class FileRegisters : public RegisterDevice
{
public:
    FileRegisters(syscalls::FileDescriptor file, std::unique_ptr<IMutex> mutex)
        : RegisterDevice(std::move(mutex)), m_file(std::move(file))
    {}

private:
    bool load(std::size_t offset, unsigned int& value) const override
    {
        unsigned int word = 0;
        ssize_t count = 0;
        do {
            count = ::pread(m_file.get(), &word, sizeof word, static_cast<off_t>(offset));
        } while (count == -1 && errno == EINTR);
        if (count != static_cast<ssize_t>(sizeof word)) {
            return false;
        }
        value = word;
        return true;
    }

    const syscalls::FileDescriptor m_file;
};

/** A device's memory, each register loaded at once. */
class MemoryRegisters : public RegisterDevice
{
public:
    MemoryRegisters(const void* registers, std::unique_ptr<IMutex> mutex)
        : RegisterDevice(std::move(mutex)), m_registers(registers)
    {}
    ~MemoryRegisters() override
    {
        ::munmap(const_cast<void*>(m_registers), // NOLINT(cppcoreguidelines-pro-type-const-cast)
                 pageSize());
    }
    MemoryRegisters(const MemoryRegisters&) = delete;
    MemoryRegisters& operator=(const MemoryRegisters&) = delete;

private:
    bool load(std::size_t offset, unsigned int& value) const override
    {
        const auto* registers = static_cast<const volatile unsigned int*>(m_registers);
        value = registers[offset / sizeof(unsigned int)];
        return true;
    }

    const void* const m_registers;
};

} // namespace

std::unique_ptr<RegisterDevice> RegisterDevice::open(const std::string& name,
                                                     std::unique_ptr<IMutex> mutex)
{
    // Registers are only read: a board that cannot be written still has them.
    DeviceFile file = openDevice(name, O_RDONLY);
    if (!file.descriptor.isOpen()) {
        return nullptr;
    }
    if (file.isRegular) {
        return std::make_unique<FileRegisters>(std::move(file.descriptor), std::move(mutex));
    }
    void* const registers =
        ::mmap(nullptr, pageSize(), PROT_READ, MAP_SHARED, file.descriptor.get(), 0);
    if (registers == MAP_FAILED) {
        return nullptr;
    }
    return std::make_unique<MemoryRegisters>(registers, std::move(mutex));
}

RegisterDevice::RegisterDevice(std::unique_ptr<IMutex> mutex) : m_mutex(std::move(mutex)) {}

int RegisterDevice::read(std::size_t offset, unsigned int& value)
{
    std::unique_lock<IMutex> lock;
    if (m_mutex) {
        lock = std::unique_lock<IMutex>(*m_mutex);
    }
    if (offset % sizeof(unsigned int) != 0 || offset >= pageSize()) {
        return -1;
    }
    return load(offset, value) ? 0 : -1;
}

} // namespace DDevIo
