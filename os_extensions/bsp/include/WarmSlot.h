/**
 * @file
 * @brief The board's slot id, shared by all processes and kept over warm restarts. For C++ only.
 */
#ifndef BSP_WARMSLOT_H
#define BSP_WARMSLOT_H

#include "BspExport.h"

#ifdef __cplusplus

namespace os
{
namespace bsp
{

template <typename Value> struct WarmObject;

/**
 * The slot id in the store of warm objects (WarmDatabase.h).
 *
 * Any number of objects, threads and processes may use it at the same time. Messages go to the
 * trace channel "bsp.networking".
 */
class BSP_API WarmSlot
{
public:
    /** Finds the slot id in the store, or creates it with the value -1. Does not throw. */
    WarmSlot();

    /**
     * The slot id; -1 when none is set or the store is not available.
     * @throws std::system_error when the lock of the slot id cannot be taken
     */
    int get() const;

    /**
     * Sets the slot id; does nothing when the store is not available.
     * @throws std::system_error when the lock of the slot id cannot be taken
     */
    void set(const int& slotId);

private:
    WarmObject<int>* m_slotData = nullptr;
    bool m_isValid = false;
};

} // namespace bsp
} // namespace os

#endif

#endif
