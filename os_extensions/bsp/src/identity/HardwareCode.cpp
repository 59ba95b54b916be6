#include "identity/HardwareCode.h"

#include "Bsp.h"
#include "BspTrace.h"
#include "Hardware.h"
#include "HvxMessage.h"
#include "Products.h"
#include "identity/Eeprom.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>

namespace os::bsp
{

// The defaults are copied at the first call, not while the program starts: the platform's table may
// be initialised later than this module, and other modules may ask while they are initialised.

const NxuHwCode& hwCode()
{
    static NxuHwCode code = hwVariants[hardware::DefaultVariant].code;
    static std::once_flag once;
    std::call_once(once, [] {
        // A failing read may have written some bytes, so it does not get the code itself.
        std::array<std::uint8_t, hardware::HardwareCodeSize> buffer{};
        const int result = Bsp_readHardwareCode(buffer.data());
        if (result != 0) {
            TRACE_MESSAGE(bspTrace, trace::Error, "e2prom_data_read() failed. Returned " << result);
            return;
        }
        std::copy(buffer.begin(), buffer.end(), code.word);
    });
    return code;
}

const NxuHwVariant& selectedVariant()
{
    static const NxuHwVariant* variant = &hwVariants[hardware::DefaultVariant];
    static std::once_flag once;
    std::call_once(once, [] {
        // The platform's operator== decides, which need not compare all words.
        const auto found = std::find(hwVariants.begin(), hwVariants.end(), hwCode());
        if (found != hwVariants.end()) {
            variant = &*found;
            return;
        }
        TRACE_MESSAGE(bspTrace, trace::Error, "Invalid hardware variant");
        variant = &hwVariants[hardware::FallbackVariant];
    });
    return *variant;
}

ProductId getProductId()
{
    const int code = selectedVariant().productCode;
    const ProductId product = productOf(code);
    if (product == ProductId::EndOfList) {
        TRACE_MESSAGE(bspTrace, trace::Error, "Unknown product ID: " << code);
    }
    return product;
}

int getHwRevision()
{
    return selectedVariant().hwRevision;
}

} // namespace os::bsp
