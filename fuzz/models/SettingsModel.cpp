#include "SettingsModel.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace fuzz
{

namespace
{

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r';
}

std::string withoutBlanks(std::string text)
{
    while (!text.empty() && isBlank(text.back())) {
        text.pop_back();
    }
    while (!text.empty() && isBlank(text.front())) {
        text.erase(0, 1);
    }
    return text;
}

/** The bytes that the text stands for; what is wrong with it goes to the error. */
std::string decoded(const std::string& text, std::string& error)
{
    std::string bytes;
    for (auto rest = text.begin(); rest != text.end() && error.empty();) {
        const char character = *rest++;
        const auto code = static_cast<unsigned char>(character);
        if (code == 127 || (code < 32 && code != 9)) {
            constexpr const char* Digits = "0123456789ABCDEF";
            error = std::string("a control character that is not written as \\x") +
                    Digits[code >> 4U] + Digits[code & 15U];
        } else if (character != '\\') {
            bytes += character;
        } else if (rest != text.end() && *rest == '\\') {
            bytes += *rest++;
        } else if (rest != text.end() && *rest == 'n') {
            bytes += '\n';
            ++rest;
        } else if (rest != text.end() && *rest == 'x') {
            const bool isHex = text.end() - rest > 2 &&
                               std::isxdigit(static_cast<unsigned char>(rest[1])) != 0 &&
                               std::isxdigit(static_cast<unsigned char>(rest[2])) != 0;
            if (!isHex) {
                error = "\\x without two hexadecimal digits";
                break;
            }
            bytes += static_cast<char>(
                std::strtol(std::string(rest + 1, rest + 3).c_str(), nullptr, 16));
            rest += 3;
        } else {
            error = "a backslash that is followed by none of \\, n and x";
        }
    }
    return bytes;
}

SettingsModel::Line lineOf(const std::string& raw, std::string& error)
{
    const std::string text = withoutBlanks(raw);
    if (text.empty() || text.front() == '#') {
        return {raw, std::nullopt, ""};
    }
    const auto equals = std::find(text.begin(), text.end(), '=');
    if (equals == text.end()) {
        error = "not of the form key=value";
        return {};
    }
    const std::string key = decoded(withoutBlanks({text.begin(), equals}), error);
    const std::string value =
        error.empty() ? decoded(withoutBlanks({equals + 1, text.end()}), error) : "";
    if (error.empty() && key.empty()) {
        error = "an empty key";
    } else if (error.empty() && key.size() > 511) {
        error = "a key of more than 511 bytes";
    }
    return {raw, key, value};
}

} // namespace

SettingsModel SettingsModel::ofText(const std::string& text)
{
    SettingsModel model;
    std::string raw;
    const auto end = [&] {
        std::string why;
        model.lines.push_back(lineOf(raw, why));
        if (model.error.empty() && !why.empty()) {
            model.error = "line " + std::to_string(model.lines.size()) + ": " + why;
        }
        raw.clear();
    };
    for (const char character : text) {
        if (character == '\n') {
            end();
        } else {
            raw += character;
        }
    }
    if (!raw.empty()) {
        end();
    }
    return model;
}

std::map<std::string, std::string> SettingsModel::entries() const
{
    std::map<std::string, std::string> result;
    for (const Line& line : lines) {
        if (line.key) {
            result[*line.key] = line.value;
        }
    }
    return result;
}

void SettingsModel::clear(const std::string& key)
{
    std::vector<Line> kept;
    for (const Line& line : lines) {
        if (line.key != key) {
            kept.push_back(line);
        }
    }
    lines = kept;
}

bool SettingsModel::isKey(const std::string& key)
{
    return !key.empty() && key.size() <= 511;
}

} // namespace fuzz
