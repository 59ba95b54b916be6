#include "Bsp.h"
#include "WarmDatabase.h"
#include "WarmSlot.h"

#include <type_traits>

namespace os
{
namespace bsp
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

} // namespace bsp
} // namespace os

int Bsp_getSlotId()
{
    return os::bsp::slot().get();
}

void Bsp_setSlotId(int id)
{
    os::bsp::slot().set(id);
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
