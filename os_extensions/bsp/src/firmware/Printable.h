#ifndef BSP_SRC_BSPPRINTABLE_H
#define BSP_SRC_BSPPRINTABLE_H

namespace os
{
namespace bsp
{

/** The text, or a stand-in for a caller's null pointer, which no stream takes. */
inline const char* printable(const char* text)
{
    return text == nullptr ? "(null)" : text;
}

} // namespace bsp
} // namespace os

#endif
