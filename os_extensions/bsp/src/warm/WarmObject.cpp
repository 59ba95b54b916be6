#include "warm/WarmObject.h"

#include "WarmDatabase.h"

namespace os::bsp::warmobject
{

void findOrCreate(const WarmObjectId& id, unsigned int size, void*& object, bool& created)
{
    void* found = nullptr;
    std::mutex* sync = nullptr;
    // The block's mutex is not used: the object has one of its own.
    if (!dtcm::WarmDatabase::getInstance().getObjectData(id.name, &found, size, &sync, created) ||
        found == nullptr || sync == nullptr)
    {
        report(id, trace::Error, [&](trace::MessageText& text) {
            text << "Error: Could not get the " << id.name << " object from the warm database";
        });
        return;
    }
    object = found;
    report(id, trace::Information, [&](trace::MessageText& text) {
        text << "The " << id.name << " object was successfully retrieved from the warm database";
    });
}

void reportInitialization(const WarmObjectId& id)
{
    report(id, trace::Information, [&](trace::MessageText& text) {
        text << "The " << id.name << " object was created, initializing the object contents";
    });
}

void reportException(const WarmObjectId& id, const std::exception* exception)
{
    report(id, trace::Error, [&](trace::MessageText& text) {
        text << "Error during initialization of warm area: Caught ";
        if (exception == nullptr) {
            text << "unknown exception";
        } else {
            text << "exception [" << exception->what() << "].";
        }
    });
}

} // namespace os::bsp::warmobject
