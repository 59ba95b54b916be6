#include "WarmSlot.h"

#include "HvxMessage.h"
#include "WarmDatabase.h"
#include "WarmLayout.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <mutex>

#include <pthread.h>

namespace os::bsp
{

namespace
{

HvxTrace slotTrace("bsp.networking", trace::Notice);

using dtcm::SlotIdNotSet;
using dtcm::SlotObject;

} // namespace

/** The object in the warm area. */
struct WarmSlot::SlotData
{
    dtcm::SlotId slotId;
    pthread_mutex_t mutex;

    /** The mutex under the interface through which it is locked. */
    std::mutex& lockable() { return reinterpret_cast<std::mutex&>(mutex); }

    /** Gives a new object, all 0, its contents. */
    void initialize()
    {
        slotId = SlotIdNotSet;
        pthread_mutexattr_t attributes;
        ::pthread_mutexattr_init(&attributes);
        ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        ::pthread_mutex_init(&mutex, &attributes);
        ::pthread_mutexattr_destroy(&attributes);
    }
};

WarmSlot::WarmSlot()
{
#if defined(__arm__)
    static_assert(sizeof(SlotData) == 28 && offsetof(SlotData, mutex) == 4,
                  "as all programs of the board have it");
#endif
    static_assert(sizeof(std::mutex) == sizeof(pthread_mutex_t) &&
                      alignof(std::mutex) == alignof(pthread_mutex_t),
                  "a std::mutex is a pthread_mutex_t and nothing else");

    try {
        void* object = nullptr;
        std::mutex* sync = nullptr;
        bool created = false;
        const bool obtained = dtcm::WarmDatabase::getInstance().getObjectData(
            SlotObject, &object, sizeof(SlotData), &sync, created);
        m_slotData = static_cast<SlotData*>(object);
        // The block's mutex is not used: the object has one of its own.
        m_isValid = obtained && m_slotData != nullptr && sync != nullptr;
        if (!m_isValid) {
            TRACE_MESSAGE(slotTrace, trace::Error,
                          "Error: Could not get the " << SlotObject
                                                      << " object from the warm database");
            return;
        }
        TRACE_MESSAGE(slotTrace, trace::Information,
                      "The " << SlotObject
                             << " object was successfully retrieved from the warm database");
        if (!created) {
            TRACE_MESSAGE(slotTrace, trace::Information,
                          "The slotId from WARM reset is: " << m_slotData->slotId);
            return;
        }
        TRACE_MESSAGE(slotTrace, trace::Information,
                      "The " << SlotObject
                             << " object was created, initializing the object contents");
        m_slotData->initialize();
    } catch (const std::exception& exception) {
        TRACE_MESSAGE(slotTrace, trace::Error,
                      "Error during initialization of warm area: Caught exception ["
                          << exception.what() << "].");
    } catch (...) {
        TRACE_MESSAGE(slotTrace, trace::Error,
                      "Error during initialization of warm area: Caught unknown exception");
    }
}

int WarmSlot::get() const
{
    if (!m_isValid) {
        return SlotIdNotSet;
    }
    const std::lock_guard<std::mutex> guard(m_slotData->lockable());
    TRACE_MESSAGE(slotTrace, trace::Entry, "SlotId is: " << m_slotData->slotId);
    return m_slotData->slotId;
}

void WarmSlot::set(const int& slotId)
{
    if (!m_isValid) {
        return;
    }
    const std::lock_guard<std::mutex> guard(m_slotData->lockable());
    TRACE_MESSAGE(slotTrace, trace::Information, "Setting slotId to: " << slotId);
    m_slotData->slotId = slotId;
}

} // namespace os::bsp
