#include "SharedState.h"

#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace faults
{

void WatchedFile::open()
{
    unmap();
    const int fd = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    m_isThere = fd != -1;
    struct stat status = {};
    if (m_isThere && ::fstat(fd, &status) == 0 && status.st_size > 0) {
        m_size = static_cast<std::size_t>(status.st_size);
        void* mapping = ::mmap(nullptr, m_size, PROT_READ, MAP_SHARED, fd, 0);
        m_bytes = static_cast<const char*>(mapping);
    }
    ::close(fd);
}

bool WatchedFile::holds(const std::optional<std::string>& bytes) const
{
    return bytes.has_value() == m_isThere &&
           (!bytes || (bytes->size() == m_size &&
                       (m_size == 0 || std::memcmp(bytes->data(), m_bytes, m_size) == 0)));
}

std::optional<std::string> WatchedFile::bytes() const
{
    return m_isThere ? std::optional(std::string(m_bytes, m_size)) : std::nullopt;
}

void WatchedFile::unmap()
{
    if (m_size > 0) {
        ::munmap(const_cast<char*>(m_bytes), m_size); // NOLINT: munmap's interface
    }
    m_bytes = "";
    m_size = 0;
}

bool SharedStateWatch::hasChanged(bool isAfterSystemCall)
{
    if (isAfterSystemCall) {
        m_area.open();
        m_semaphore.open();
        m_mutexes.open();
    }
    if (m_area.holds(m_state.area) && m_semaphore.holds(m_state.semaphore) &&
        m_mutexes.holds(m_state.mutexes))
    {
        return false;
    }
    m_state = {m_area.bytes().value_or(""), m_semaphore.bytes(), m_mutexes.bytes()};
    return true;
}

} // namespace faults
