#ifndef TRACE_MESSAGETEXT_H
#define TRACE_MESSAGETEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>

namespace trace
{

/**
 * The text of a message, put together from texts, characters and numbers.
 *
 * It is whole or lost: a text that is longer than most and finds no memory loses all of itself.
 * Nothing is thrown, errno stays, and numbers are decimal whatever the program's locale.
 */
class MessageText
{
public:
    // The buffer is not initialised: that would take longer than a message.
    MessageText() noexcept {} // NOLINT(modernize-use-equals-default,*-member-init)
    MessageText(const MessageText&) = delete;
    MessageText& operator=(const MessageText&) = delete;

    MessageText& operator<<(std::string_view text) noexcept;
    /** A null pointer adds nothing. */
    MessageText& operator<<(const char* text) noexcept;
    MessageText& operator<<(char character) noexcept;
    template <typename Integer>
    std::enable_if_t<std::is_integral_v<Integer>, MessageText&> operator<<(Integer number) noexcept
    {
        if constexpr (std::is_signed_v<Integer>) {
            return addNumber(std::intmax_t{number});
        } else {
            return addNumber(std::uintmax_t{number});
        }
    }

    bool isLost() const noexcept { return m_isLost; }
    /** The text so far, unless it is lost. */
    std::string_view view() const noexcept { return {m_text, m_size}; }

private:
    template <typename Number> MessageText& addNumber(Number number) noexcept;
    bool reserve(std::size_t size) noexcept;

    std::array<char, 512> m_buffer;
    std::unique_ptr<char[]> m_largerBuffer;
    char* m_text = m_buffer.data();
    std::size_t m_size = 0;
    std::size_t m_capacity = m_buffer.size();
    bool m_isLost = false;
};

} // namespace trace

#endif
