/**
 * @file
 * @brief Objects in the warm area that have a type.
 *
 * A module's object takes a few lines:
 *
 *     HvxTrace counterTrace("bsp.counter", trace::Notice);
 *
 *     Counter::Counter()
 *     {
 *         static constexpr HvxTraceHeader site{__FILE__, __LINE__, __func__};
 *         m_object = WarmObject<int>::obtain({"COUNTER", counterTrace, site}, 0,
 *             [](trace::MessageText& text, int found) { text << "Counted so far: " << found; });
 *     }
 *
 *     int Counter::get() const
 *     {
 *         if (m_object == nullptr) {
 *             return 0;
 *         }
 *         const auto guard = m_object->lock();
 *         return m_object->value;
 *     }
 */
#ifndef BSP_SRC_WARM_WARMOBJECT_H
#define BSP_SRC_WARM_WARMOBJECT_H

#include "HvxMessage.h"
#include "SharedMutex.h"
#include "WarmLayout.h"

#include <exception>
#include <type_traits>

namespace os::bsp
{

/** An object's name, and how messages about obtaining it are written. */
struct WarmObjectId
{
    const char* name;
    HvxTrace& channel;
    const HvxTraceHeader& site; /**< Where it is obtained; static, as for every message. */
};

/** What all objects have in common, whatever their type. */
namespace warmobject
{

/** TRACE_MESSAGE at the site of the one who obtains the object. */
template <typename Write>
void report(const WarmObjectId& id, HvxTraceLevel level, const Write& write)
{
    if (trace::isActive(id.channel, level)) {
        trace::HvxMessage message(id.channel, level, id.site);
        write(message.text());
        message.write();
    }
}

/**
 * Finds an object or makes one of zeros, and traces whether that worked.
 *
 * @param object   receives where it is, as soon as that is known; untouched when there is none
 * @param created  receives whether this call made it
 */
void findOrCreate(const WarmObjectId& id, unsigned int size, void*& object, bool& created);

void reportInitialization(const WarmObjectId& id);
void reportException(const WarmObjectId& id, const std::exception* exception);

} // namespace warmobject

/**
 * An object in the warm area: a value, which processes of all versions know, and its own mutex. It
 * is obtained, never made or copied.
 */
template <typename Value> struct WarmObject
{
    static_assert(std::is_trivially_copyable<Value>::value, "it outlives the programs that use it");

    /**
     * Finds the object, or creates it with the initial value.
     *
     * @param describe  writes a value that was found into the message about it
     * @return the object, which is never gone; null when the store has none, which is traced
     */
    template <typename Describe>
    static WarmObject* obtain(const WarmObjectId& id, const Value& initial, Describe describe)
    {
        static_assert(sizeof(WarmObject) <= dtcm::MaxObjectSize &&
                          alignof(WarmObject) <= dtcm::NameSize,
                      "it fits into a block, behind the name");
        void* object = nullptr;
        try {
            bool created = false;
            warmobject::findOrCreate(id, sizeof(WarmObject), object, created);
            auto* const found = static_cast<WarmObject*>(object);
            if (found != nullptr && !created) {
                warmobject::report(id, trace::Information,
                                   [&](trace::MessageText& text) { describe(text, found->value); });
            } else if (found != nullptr) {
                warmobject::reportInitialization(id);
                found->value = initial;
                initSharedMutex(&found->mutex);
            }
        } catch (const std::exception& exception) {
            warmobject::reportException(id, &exception);
        } catch (...) {
            warmobject::reportException(id, nullptr);
        }
        return static_cast<WarmObject*>(object);
    }

    /** Locks the value, against all processes, for the life of the guard. */
    std::lock_guard<std::mutex> lock() { return std::lock_guard<std::mutex>(*lockable(&mutex)); }

    Value value;
    pthread_mutex_t mutex;
};

} // namespace os::bsp

#endif
