#include "ErrnoText.h"

#include <array>
#include <cstring>

namespace trace
{

std::string errnoText(int error)
{
    std::array<char, 128> buffer{};
    // The GNU strerror_r need not use the buffer; what it returns is the text.
    return strerror_r(error, buffer.data(), buffer.size());
}

} // namespace trace
