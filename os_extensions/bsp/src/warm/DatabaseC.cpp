#include "WarmDatabase.h"

using os::bsp::dtcm::WarmDatabase;

int WarmDatabase_createObject(const char* name, void** object, unsigned int objectSize)
{
    if (name == nullptr) {
        *object = nullptr;
        return -1;
    }
    return WarmDatabase::getInstance().createObject(name, object, objectSize, true) ? 0 : -1;
}

int WarmDatabase_retrieveObject(const char* name, void** object, unsigned int objectSize)
{
    if (name == nullptr) {
        *object = nullptr;
        return -1;
    }
    return WarmDatabase::getInstance().retrieveObject(name, object, objectSize, true) ? 0 : -1;
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
    if (!WarmDatabase::getInstance().getObjectData(name, object, objectSize, &mutex, *created)) {
        return -1;
    }
    *sync = mutex;
    return 0;
}
