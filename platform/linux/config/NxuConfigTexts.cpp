#include "NxuConfig.h"

// Programs ask for settings while their static objects are made, so these are made before.

namespace os::bsp
{

namespace key
{
[[gnu::init_priority(101)]] const std::string FpgaVariant = "FpgaVariant";
[[gnu::init_priority(101)]] const std::string RadiolinkMode = "RadiolinkMode";
} // namespace key

namespace value
{
[[gnu::init_priority(101)]] const std::string Empty;

namespace fpgaVariant
{
[[gnu::init_priority(101)]] const std::string TwoTdm = "TwoTdm";
[[gnu::init_priority(101)]] const std::string OneTdmRleEqpNoMlhc = "OneTdmRleEqpNoMlhc";
} // namespace fpgaVariant

namespace radiolinkMode
{
[[gnu::init_priority(101)]] const std::string Rl4 = "Rl4";
[[gnu::init_priority(101)]] const std::string Rl5 = "Rl5";
} // namespace radiolinkMode
} // namespace value

} // namespace os::bsp
