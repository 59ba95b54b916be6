#include "Bsp.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <type_traits>

namespace os::bsp
{

namespace
{

WarmSlot& slot()
{
    static_assert(std::is_trivially_destructible<WarmSlot>::value, "it is never destroyed");
    static WarmSlot instance;
    return instance;
}

} // namespace

WarmSlot& slotInstance()
{
    return slot();
}

} // namespace os::bsp

int Bsp_getResetType()
{
    return static_cast<int>(os::bsp::getResetType());
}

int Bsp_getSlotId()
{
    return os::bsp::slot().get();
}

void Bsp_setSlotId(int id)
{
    os::bsp::slot().set(id);
}

int WarmDatabase_createObject(const char* name, void** object, unsigned int objectSize)
{
    if (name == nullptr) {
        *object = nullptr;
        return -1;
    }
    return os::bsp::dtcm::WarmDatabase::getInstance().createObject(name, object, objectSize, true)
               ? 0
               : -1;
}

int WarmDatabase_retrieveObject(const char* name, void** object, unsigned int objectSize)
{
    if (name == nullptr) {
        *object = nullptr;
        return -1;
    }
    return os::bsp::dtcm::WarmDatabase::getInstance().retrieveObject(name, object, objectSize, true)
               ? 0
               : -1;
}

int WarmDatabase_getObjectData(const char* name, void** object, unsigned int objectSize,
                               void** sync, bool* created)
{
    if (name == nullptr) {
        *object = nullptr;
        *created = false;
        return -1;
    }
    std::mutex* mutex = nullptr;
    if (!os::bsp::dtcm::WarmDatabase::getInstance().getObjectData(name, object, objectSize, &mutex,
                                                                  *created))
    {
        return -1;
    }
    *sync = mutex;
    return 0;
}

int Bsp_createDtcmObject(const char* name, void** object, unsigned int objectSize)
{
    return WarmDatabase_createObject(name, object, objectSize);
}

int Bsp_retrieveDtcmObject(const char* name, void** object, unsigned int objectSize)
{
    return WarmDatabase_retrieveObject(name, object, objectSize);
}

int Bsp_getDtcmObjectData(const char* name, void** object, unsigned int objectSize, void** sync,
                          bool* created)
{
    return WarmDatabase_getObjectData(name, object, objectSize, sync, created);
}
