#include "SlotCommand.h"

#include "Bsp.h"

#include <iostream>

namespace
{

std::int32_t getSlotId(std::int32_t /*argc*/, char* /*argv*/[])
{
    std::cout << Bsp_getSlotId() << std::endl;
    return 0;
}

} // namespace

constexpr Command getSlotIdCommand{
    getSlotId, "getSlotId",
    "Get the slot position in the rack. -1 indicates not yet set, 0 indicates not applicable"};
