#include "Text.h"

#include <cstddef>
#include <iomanip>
#include <sstream>
#include <system_error>

namespace
{

constexpr std::size_t LineLength = 16;

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

std::string errorText(int error)
{
    return std::generic_category().message(error);
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
