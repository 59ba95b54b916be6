#include "HardwareCode.h"

#include "Hardware.h"

#include <charconv>

namespace hardwarecode
{

namespace
{

constexpr int Hexadecimal = 16;

} // namespace

std::string bytesOf(const os::bsp::NxuHwCode& code)
{
    std::string bytes;
    for (const std::int32_t word : code.word) {
        bytes.push_back(static_cast<char>(word));
    }
    return bytes;
}

std::string textOf(const std::string& bytes)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text.push_back(digits[value / Hexadecimal]);
        text.push_back(digits[value % Hexadecimal]);
    }
    return text;
}

std::optional<std::string> parse(const std::string& text)
{
    if (text.size() != 2 * hardware::HardwareCodeSize) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const char* const end = text.data() + i + 2;
        unsigned char value = 0;
        const auto result = std::from_chars(text.data() + i, end, value, Hexadecimal);
        if (result.ec != std::errc() || result.ptr != end) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

} // namespace hardwarecode
