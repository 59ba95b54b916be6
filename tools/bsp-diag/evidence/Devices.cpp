#include "evidence/Devices.h"

#include "DDevIo.h"
#include "DeviceMemory.h"
#include "Hardware.h"
#include "Text.h"
#include "WarmLayout.h"
#include "evidence/BoardFiles.h"
#include "evidence/SharedFile.h"

#include <cerrno>
#include <exception>
#include <memory>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using os::bsp::dtcm::AreaSize;

/** A device gives its memory to a mapping only. */
std::string mappedBytes(const syscalls::FileDescriptor& device)
{
    void* const memory = ::mmap(nullptr, AreaSize, PROT_READ, MAP_SHARED, device.get(), 0);
    if (memory == MAP_FAILED) {
        return "";
    }
    std::string bytes = bytesOfDevice(memory, AreaSize);
    ::munmap(memory, AreaSize);
    return bytes;
}

} // namespace

Dtcm::Dtcm()
{
    const int device = DDevIo_open(hardware::WarmAreaDevice);
    if (device < 0) {
        m_openError = errno;
        m_file = openToRead();
    } else {
        m_file =
            syscalls::FileDescriptor(::fcntl(DDevIo_getFileDescriptor(device), F_DUPFD_CLOEXEC, 0));
        DDevIo_close(device);
    }
    struct stat status
    {};
    if (!m_file.isOpen() || ::fstat(m_file.get(), &status) != 0) {
        return;
    }
    m_isFile = S_ISREG(status.st_mode);
    if (m_isFile) {
        m_fileSize = static_cast<std::size_t>(status.st_size);
    }
    void* const memory = ::mmap(nullptr, AreaSize, PROT_READ, MAP_SHARED, m_file.get(), 0);
    if (memory == MAP_FAILED) {
        m_mapError = errno;
        return;
    }
    ::munmap(memory, AreaSize);
    if (const std::optional<ListedFile> listed = listedFile(m_file, AreaSize)) {
        m_identity = listed->identity;
    }
}

syscalls::FileDescriptor Dtcm::openToRead() const
{
    const std::optional<std::string> file = boardFile(hardware::WarmAreaDevice);
    if (!file) {
        return syscalls::FileDescriptor();
    }
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    return syscalls::FileDescriptor(::open(file->c_str(), flags));
}

Reading<std::string> Dtcm::area() const
{
    const std::string place = placeOf(hardware::WarmAreaDevice);
    if (!m_file.isOpen()) {
        return Reading<std::string>::unknown("cannot open " + place + ": " +
                                             errorText(m_openError));
    }
    std::string bytes = m_isFile ? bytesOf(m_file, AreaSize) : mappedBytes(m_file);
    if (bytes.size() < AreaSize) {
        return Reading<std::string>::unknown(place + " gives " + std::to_string(bytes.size()) +
                                             " of " + std::to_string(AreaSize) + " bytes");
    }
    return bytes;
}

LockableMemory lockableMemory()
{
    // The warm area, and the mutexes in a page of their own.
    const std::size_t size = AreaSize + static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_LOCKED, -1, 0);
    if (memory != MAP_FAILED) {
        ::munmap(memory, size);
        return {true, ""};
    }
    struct rlimit limit
    {};
    ::getrlimit(RLIMIT_MEMLOCK, &limit);
    return {false, std::to_string(limit.rlim_cur) + " of " + std::to_string(size) + " bytes"};
}

Reading<std::uint32_t> resetCause()
{
    using Unknown = Reading<std::uint32_t>;
    constexpr int defaultMutex = 0;
    try {
        const std::unique_ptr<DDevIo::IDevice> device = DDevIo::Factory::getInstance().createUnique(
            hardware::RegistersDevice, std::make_unique<DDevIo::PthreadMutex>(defaultMutex));
        auto* const registers = dynamic_cast<DDevIo::Device<unsigned int>*>(device.get());
        if (registers == nullptr) {
            return Unknown::unknown("no registers at " + placeOf(hardware::RegistersDevice));
        }
        unsigned int cause = 0;
        if (registers->read(hardware::ResetCauseOffset, cause) != 0) {
            return Unknown::unknown("the first register of " + placeOf(hardware::RegistersDevice) +
                                    " cannot be read");
        }
        return cause;
    } catch (const std::exception& error) {
        return Unknown::unknown(error.what());
    }
}
