#include "MessageText.h"

#include "ErrnoKeeper.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>

namespace trace
{

MessageText& MessageText::operator<<(std::string_view text) noexcept
{
    if (reserve(text.size())) {
        std::copy(text.begin(), text.end(), m_text + m_size);
        m_size += text.size();
    }
    return *this;
}

MessageText& MessageText::operator<<(const char* text) noexcept
{
    return text == nullptr ? *this : *this << std::string_view(text);
}

MessageText& MessageText::operator<<(char character) noexcept
{
    return *this << std::string_view(&character, 1);
}

template <typename Number> MessageText& MessageText::addNumber(Number number) noexcept
{
    std::array<char, std::numeric_limits<Number>::digits10 + 2> digits;
    const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    return *this << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

template MessageText& MessageText::addNumber(std::intmax_t number) noexcept;
template MessageText& MessageText::addNumber(std::uintmax_t number) noexcept;

/** Whether that many bytes more fit in. */
bool MessageText::reserve(std::size_t size) noexcept
{
    if (m_isLost || size <= m_capacity - m_size) {
        return !m_isLost;
    }
    const syscalls::ErrnoKeeper errnoKeeper;
    const std::size_t capacity = 2 * std::max(m_capacity, size);
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[capacity]);
    if (!buffer) {
        m_isLost = true;
        return false;
    }
    std::memcpy(buffer.get(), m_text, m_size);
    m_largerBuffer = std::move(buffer);
    m_text = m_largerBuffer.get();
    m_capacity = capacity;
    return true;
}

} // namespace trace
