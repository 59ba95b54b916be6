#include "RegisterDevice.h"

#include <utility>

namespace DDevIo
{

Factory& Factory::getInstance()
{
    // Never destroyed: other static objects may ask for devices while they are destroyed.
    static Factory& factory = *new Factory;
    return factory;
}

std::unique_ptr<IDevice> Factory::createUnique(const std::string& name,
                                               std::unique_ptr<IMutex> mutex)
{
    return RegisterDevice::open(name, std::move(mutex));
}

} // namespace DDevIo
