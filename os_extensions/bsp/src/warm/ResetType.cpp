#include "Bsp.h"
#include "DDevIo.h"
#include "Hardware.h"

#include <atomic>
#include <memory>

#include <unistd.h>

namespace os::bsp
{

namespace
{

constexpr int DefaultMutexType = 0;

/** Unknown stands for "not worked out yet" as well. */
std::atomic<ResetType> cachedResetType{ResetType::Unknown};

/** The reset register's word as it stands there; Unknown when it cannot be read. */
ResetType readResetCause()
{
    const std::unique_ptr<DDevIo::IDevice> device = DDevIo::Factory::getInstance().createUnique(
        hardware::RegistersDevice, std::make_unique<DDevIo::PthreadMutex>(DefaultMutexType));
    auto* registers = dynamic_cast<DDevIo::Device<unsigned int>*>(device.get());
    if (registers == nullptr) {
        return ResetType::Unknown;
    }
    auto word = static_cast<unsigned int>(ResetType::Unknown);
    registers->read(hardware::ResetCauseOffset, word);
    return static_cast<ResetType>(word);
}

/** On boards without a reset register only one product can have had a warm restart. */
ResetType deduceResetCause()
{
    const bool warm =
        getProductId() == ProductId::KT4851_4 && ::access(hardware::ColdRestartMarker, F_OK) == -1;
    return warm ? ResetType::Warm : ResetType::Cold;
}

} // namespace

ResetType getResetType()
{
    ResetType type = cachedResetType.load(std::memory_order_relaxed);
    if (type == ResetType::Unknown) {
        type = getPlatformType() == PlatformType::Nxu4 ? readResetCause() : deduceResetCause();
        cachedResetType.store(type, std::memory_order_relaxed);
    }
    return type;
}

std::string resetTypeToString(const ResetType& type)
{
    return Bsp_resetTypeName(static_cast<int>(type));
}

} // namespace os::bsp
