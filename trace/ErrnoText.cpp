#include "ErrnoText.h"

#include <cstring>

namespace trace
{

// The GNU strerror_r need not use the room; what it returns is the text.
ErrnoText::ErrnoText(int error) noexcept : m_text(strerror_r(error, m_room.data(), m_room.size()))
{}

} // namespace trace
