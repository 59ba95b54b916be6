// The sample board has no devices.

#include "DDevIo.h"

#include <cerrno>
#include <mutex>

int DDevIo_open(const char*)
{
    errno = ENODEV;
    return -1;
}

int DDevIo_getFileDescriptor(int)
{
    errno = EBADF;
    return -1;
}

int DDevIo_close(int)
{
    errno = EBADF;
    return -1;
}

namespace DDevIo
{

class PthreadMutex::Implementation : public std::mutex
{};

PthreadMutex::PthreadMutex(int) : m_implementation(new Implementation) {}
PthreadMutex::~PthreadMutex() = default;
void PthreadMutex::lock()
{
    m_implementation->lock();
}
void PthreadMutex::unlock()
{
    m_implementation->unlock();
}

Factory& Factory::getInstance()
{
    static Factory factory;
    return factory;
}

std::unique_ptr<IDevice> Factory::createUnique(const std::string&, std::unique_ptr<IMutex>)
{
    return nullptr;
}

} // namespace DDevIo
