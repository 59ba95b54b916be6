#ifndef SYSCALLS_ERRNOTEXT_H
#define SYSCALLS_ERRNOTEXT_H

#include <array>
#include <cstring>
#include <string_view>

namespace syscalls
{

/** The system's text for an errno value; needs no memory. */
class ErrnoText
{
public:
    // The GNU strerror_r need not use the buffer; what it returns is the text.
    [[gnu::noinline]] explicit ErrnoText(int error) noexcept
        : m_text(strerror_r(error, m_buffer.data(), m_buffer.size()))
    {}
    ErrnoText(const ErrnoText&) = delete;
    ErrnoText& operator=(const ErrnoText&) = delete;

    const char* c_str() const noexcept { return m_text; }
    // NOLINTNEXTLINE(google-explicit-constructor): it is a text
    operator std::string_view() const noexcept { return m_text; }

private:
    std::array<char, 128> m_buffer;
    const char* m_text; /**< In the buffer, or the system's own. */
};

/** The system's text for an errno value; unlike strerror it may be called from any thread. */
inline ErrnoText errnoText(int error) noexcept
{
    return ErrnoText(error);
}

} // namespace syscalls

#endif
