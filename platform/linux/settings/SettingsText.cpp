#include "SettingsText.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace settings
{

namespace
{

/** A carriage return belongs to the newline of some editors. */
constexpr const char* Blanks = " \t\r";
constexpr const char* HexDigits = "0123456789ABCDEF";
constexpr char Comment = '#';
constexpr char Separator = '=';

std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(Blanks);
    if (begin == std::string::npos) {
        return "";
    }
    return text.substr(begin, text.find_last_not_of(Blanks) - begin + 1);
}

bool isPrintable(char byte)
{
    return byte >= ' ' && byte <= '~';
}

bool isControl(char byte)
{
    constexpr unsigned char Delete = 0x7F;
    const auto value = static_cast<unsigned char>(byte);
    return (value < ' ' && value != '\t') || value == Delete;
}

std::string hexEscape(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return {'\\', 'x', HexDigits[value / 16], HexDigits[value % 16]};
}

std::string escaped(char byte)
{
    switch (byte) {
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    default:
        return isPrintable(byte) ? std::string(1, byte) : hexEscape(byte);
    }
}

/** The bytes as they stand in a line, where a blank at either end would not count. */
std::string escaped(const std::string& bytes)
{
    std::string result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool isOuterBlank = bytes[i] == ' ' && (i == 0 || i + 1 == bytes.size());
        result += isOuterBlank ? hexEscape(bytes[i]) : escaped(bytes[i]);
    }
    return result;
}

/** The bytes as they stand in front of the separator. */
std::string escapedKey(const std::string& key)
{
    std::string result;
    for (const char byte : escaped(key)) {
        const bool isComment = byte == Comment && result.empty();
        result += byte == Separator || isComment ? hexEscape(byte) : std::string(1, byte);
    }
    return result;
}

/** The byte that two hexadecimal digits stand for, from that position. */
char hexByte(const std::string& text, std::size_t position)
{
    const auto digits = text.substr(position, 2);
    if (digits.size() < 2 ||
        digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
        throw std::runtime_error("\\x without two hexadecimal digits");
    }
    return static_cast<char>(std::stoi(digits, nullptr, 16));
}

std::string unescaped(const std::string& text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isControl(text[i])) {
            throw std::runtime_error("a control character that is not written as " +
                                     hexEscape(text[i]));
        }
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        ++i;
        if (text[i] == '\\') { // at the end of the text it is NUL
            bytes += '\\';
        } else if (text[i] == 'n') {
            bytes += '\n';
        } else if (text[i] == 'x') {
            bytes += hexByte(text, i + 1);
            i += 2;
        } else {
            throw std::runtime_error("a backslash that is followed by none of \\, n and x");
        }
    }
    return bytes;
}

void checkKey(const std::string& key)
{
    if (key.empty()) {
        throw std::runtime_error("an empty key");
    }
    if (key.size() > SettingsText::MaxKeySize) {
        throw std::runtime_error("a key of more than " + std::to_string(SettingsText::MaxKeySize) +
                                 " bytes");
    }
}

} // namespace

SettingsText::SettingsText(const std::string& text)
{
    // Not by a stream, which ends early, without a word, when there is no memory.
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        try {
            m_lines.push_back(parse(text.substr(begin, end - begin)));
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(m_lines.size() + 1) + ": " +
                                     error.what());
        }
        begin = end + 1;
    }
}

SettingsText::Line SettingsText::parse(const std::string& text)
{
    const std::string setting = trimmed(text);
    if (setting.empty() || setting[0] == Comment) {
        return {text, std::nullopt, ""};
    }
    const std::size_t separator = setting.find(Separator);
    if (separator == std::string::npos) {
        throw std::runtime_error("not of the form key=value");
    }
    Line line{text, unescaped(trimmed(setting.substr(0, separator))),
              unescaped(trimmed(setting.substr(separator + 1)))};
    checkKey(*line.key);
    return line;
}

Entries SettingsText::entries() const
{
    Entries result;
    for (const Line& line : m_lines) {
        if (line.key) {
            result[*line.key] = line.value;
        }
    }
    return result;
}

void SettingsText::set(const std::string& key, const std::string& value)
{
    checkKey(key);
    const Line line{escapedKey(key) + Separator + escaped(value), key, value};
    const auto isOfKey = [&](const Line& other) { return other.key == key; };
    const auto holding = std::find_if(m_lines.rbegin(), m_lines.rend(), isOfKey);
    if (holding == m_lines.rend()) {
        m_lines.push_back(line);
        return;
    }
    *holding = line;
    const auto before = std::prev(holding.base());
    m_lines.erase(std::remove_if(m_lines.begin(), before, isOfKey), before);
}

void SettingsText::clear(const std::string& key)
{
    m_lines.erase(std::remove_if(m_lines.begin(), m_lines.end(),
                                 [&](const Line& line) { return line.key == key; }),
                  m_lines.end());
}

std::string SettingsText::text() const
{
    std::string result;
    for (const Line& line : m_lines) {
        result += line.text + '\n';
    }
    return result;
}

} // namespace settings
