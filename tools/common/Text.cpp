#include "Text.h"

#include "ErrnoText.h"

#include <charconv>
#include <cstddef>
#include <iomanip>
#include <sstream>

namespace
{

constexpr std::size_t LineLength = 16;
constexpr int Hexadecimal = 16;

bool isPrintable(char byte)
{
    return byte >= ' ' && byte <= '~';
}

void dumpLine(std::ostream& out, std::size_t offset, std::string_view line)
{
    out << std::setw(8) << offset << ' ';
    for (const char byte : line) {
        out << ' ' << std::setw(2) << unsigned{static_cast<unsigned char>(byte)};
    }
    out << std::string(3 * (LineLength - line.size()), ' ') << "  |";
    for (const char byte : line) {
        out << (isPrintable(byte) ? byte : '.');
    }
    out << "|\n";
}

} // namespace

std::string printable(std::string_view bytes)
{
    std::ostringstream out;
    out << std::hex << std::setfill('0');
    for (const char byte : bytes) {
        if (byte == '\\') {
            out << "\\\\";
        } else if (isPrintable(byte)) {
            out << byte;
        } else {
            out << "\\x" << std::setw(2) << unsigned{static_cast<unsigned char>(byte)};
        }
    }
    return out.str();
}

std::string hexText(std::string_view bytes)
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

std::optional<std::string> bytesOfHex(std::string_view text)
{
    if (text.size() % 2 != 0) {
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

std::string errorText(int error)
{
    return syscalls::errnoText(error).c_str();
}

std::string hexDump(std::string_view bytes, std::size_t firstOffset)
{
    std::ostringstream out;
    out << std::hex << std::setfill('0');
    std::string_view previous;
    bool repeated = false;
    for (std::size_t offset = 0; offset < bytes.size(); offset += LineLength) {
        const std::string_view line = bytes.substr(offset, LineLength);
        if (line != previous) {
            dumpLine(out, firstOffset + offset, line);
        } else if (!repeated) {
            out << "*\n";
        }
        repeated = line == previous;
        previous = line;
    }
    return out.str();
}
