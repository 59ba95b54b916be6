#include "WarmSlot.h"

#include "HvxMessage.h"
#include "WarmLayout.h"
#include "warm/WarmObject.h"

#include <cstddef>

namespace os::bsp
{

namespace
{

HvxTrace slotTrace("bsp.networking", trace::Notice);

using SlotData = WarmObject<int>;
static_assert(sizeof(SlotData) == sizeof(dtcm::SlotObject) &&
                  offsetof(SlotData, value) == offsetof(dtcm::SlotObject, slotId) &&
                  offsetof(SlotData, mutex) == offsetof(dtcm::SlotObject, mutex),
              "as all programs of the board have it");

} // namespace

WarmSlot::WarmSlot()
{
    static constexpr HvxTraceHeader site{__FILE__, __LINE__, __func__};
    m_slotData = SlotData::obtain({dtcm::SlotObjectName, slotTrace, site}, dtcm::SlotIdNotSet,
                                  [](trace::MessageText& text, int found) {
                                      text << "The slotId from WARM reset is: " << found;
                                  });
    m_isValid = m_slotData != nullptr;
}

int WarmSlot::get() const
{
    if (!m_isValid) {
        return dtcm::SlotIdNotSet;
    }
    const auto guard = m_slotData->lock();
    TRACE_MESSAGE(slotTrace, trace::Entry, "SlotId is: " << m_slotData->value);
    return m_slotData->value;
}

void WarmSlot::set(const int& slotId)
{
    if (!m_isValid) {
        return;
    }
    const auto guard = m_slotData->lock();
    TRACE_MESSAGE(slotTrace, trace::Information, "Setting slotId to: " << slotId);
    m_slotData->value = slotId;
}

} // namespace os::bsp
