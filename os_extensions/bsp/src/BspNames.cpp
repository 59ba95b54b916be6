#include "BspEnumerations.h"

namespace os
{
namespace bsp
{

#define BSP_NAME_ROW(ENUM, NAME) {static_cast<int>(ENUM::NAME), #NAME},
#define BSP_NAME_TABLE(ENUM, TABLE, ROWS)                                                          \
    const NameEntry TABLE[] = {ROWS(BSP_NAME_ROW, ENUM) BSP_NAME_ROW(ENUM, EndOfList)};
BSP_ENUMERATIONS(BSP_NAME_TABLE)

} // namespace bsp
} // namespace os
