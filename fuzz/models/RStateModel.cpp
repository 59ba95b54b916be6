#include "RStateModel.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace fuzz
{

namespace
{

const std::string Outer = "ABCDEFGHJKLMNSTUVXYZ";
const std::string Inner = "BCDFGHJKLMNSTVXZ";

const std::string& alphabet(std::size_t position)
{
    return position == 1 || position == 4 ? Outer : Inner;
}

std::int64_t index(char letter, std::size_t position)
{
    while (alphabet(position).find(letter) == std::string::npos) {
        ++letter;
    }
    return static_cast<std::int64_t>(alphabet(position).find(letter));
}

char letter(std::int64_t index, std::size_t position)
{
    const auto size = static_cast<std::int64_t>(alphabet(position).size());
    if (index < 0) {
        return '@';
    }
    return index < size ? alphabet(position)[static_cast<std::size_t>(index)]
                        : static_cast<char>('[' + index - size);
}

/** What a 32-bit board's strtol says. */
std::int64_t number(const char* text, char** end)
{
    return std::min<std::int64_t>(std::strtoll(text, end, 10), INT32_MAX);
}

std::int64_t wrapped(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::string version(const RStateModel& rstate)
{
    return std::string("RState(): R-state: ") + rstate.text.c_str() +
           ", version: " + std::to_string(rstate.major) + '.' + std::to_string(rstate.minor) + '.' +
           std::to_string(rstate.verification);
}

} // namespace

RStateModel RStateModel::ofText(const std::string& text, std::vector<std::string>& messages)
{
    RStateModel model;
    model.text = text;
    messages.emplace_back("6 ENTER RState()");
    model.parse(messages);
    messages.push_back("4 " + version(model));
    return model;
}

RStateModel RStateModel::ofVersion(int major, int minor, int verification,
                                   std::vector<std::string>& messages)
{
    RStateModel model;
    model.major = major;
    model.minor = minor;
    model.verification = verification;
    model.format();
    messages.emplace_back("6 ENTER RState()");
    messages.push_back("3 " + version(model));
    return model;
}

bool RStateModel::parse(std::vector<std::string>& messages)
{
    const char* rest = text.c_str();
    if (rest[0] != 'R') {
        messages.emplace_back("1 updateVersion(): First letter not R");
        return false;
    }
    if (std::isdigit(static_cast<unsigned char>(rest[1])) == 0) {
        messages.emplace_back("1 updateVersion(): No digit after R");
        return false;
    }
    char* end = nullptr;
    major = number(rest + 1, &end);
    if (major < 1) {
        messages.emplace_back("1 updateVersion(): R-state number not larger than 0");
        return false;
    }
    std::string letters;
    for (; letters.size() < 4 && std::isupper(static_cast<unsigned char>(*end)) != 0; ++end) {
        letters += *end;
    }
    std::array<std::int64_t, 5> i{};
    for (std::size_t position = 1; position <= letters.size(); ++position) {
        i.at(position) = index(letters[position - 1], position);
    }
    switch (letters.size()) {
    case 0:
        messages.emplace_back("1 updateVersion(): No R-state letter(s) after number");
        return false;
    case 1:
        minor = i[1];
        break;
    case 2:
        minor = 20 + 16 * i[1] + i[2];
        break;
    case 3:
        minor = 340 + 256 * i[1] + 16 * i[2] + i[3];
        break;
    default:
        minor = 5460 + 5120 * i[1] + 320 * i[2] + 20 * i[3] + i[4];
        break;
    }
    verification = 0;
    if (std::isdigit(static_cast<unsigned char>(*end)) != 0) {
        verification = number(end, nullptr);
    }
    if (verification >= 1000) {
        messages.push_back("1 updateVersion(): Illegal verification state: " +
                           std::to_string(verification));
        return false;
    }
    return true;
}

void RStateModel::format()
{
    text = 'R' + std::to_string(major);
    if (minor < 20) {
        text += letter(minor, 1);
    } else if (minor < 340) {
        const std::int64_t m = minor - 20;
        text += {letter(m / 16, 1), letter(m % 16, 2)};
    } else if (minor < 5460) {
        const std::int64_t m = minor - 340;
        text += {letter(m / 256, 1), letter(m / 16 % 16, 2), letter(m % 16, 3)};
    } else {
        const std::int64_t m = minor - 5460;
        text += {letter(m / 5120, 1), letter(m / 320 % 16, 2), letter(m / 20 % 16, 3),
                 letter(m % 20, 4)};
    }
    if (verification > 0) {
        std::array<char, 32> digits{};
        static_cast<void>(std::snprintf(digits.data(), digits.size(), "%02lld",
                                        static_cast<long long>(verification)));
        text += digits.data();
    }
}

void RStateModel::increment(int type, std::vector<std::string>& messages)
{
    const std::vector<std::string> names{"Auto", "Revision", "Minor", "Major"};
    const bool isType = type >= 0 && type < 4;
    messages.push_back("6 ENTER increment(" +
                       (isType ? names[static_cast<std::size_t>(type)] : "EndOfList") + ')');
    if (!isType) {
        messages.push_back("1 increment(" + std::to_string(type) + "): Invalid parameter");
        return;
    }
    const bool verified = verification >= 1;
    const bool stepsVerification = verified && type <= 1;
    if (stepsVerification) {
        verification = wrapped(verification + 1);
    } else if (type == 0 || type == 2) {
        minor = wrapped(minor + 1);
    } else if (type == 3) {
        major = wrapped(major + 1);
        minor = 0;
    }
    if (verified && type >= 2) {
        verification = 1;
    }
    if (verification >= 1000) {
        minor = wrapped(minor + 1);
        verification = 1;
    }
    if (minor > 107859) {
        major = wrapped(major + 1);
        minor = 0;
    }
    format();
}

bool RStateModel::isBefore(const RStateModel& other, std::vector<std::string>& messages) const
{
    messages.push_back(std::string("7 ENTER operator<(") + other.text.c_str() + ')');
    if (major != other.major || minor != other.minor) {
        return major < other.major || (major == other.major && minor < other.minor);
    }
    return verification != 0 && other.verification != 0 && verification < other.verification;
}

bool RStateModel::isEqual(const RStateModel& other, std::vector<std::string>& messages) const
{
    messages.push_back(std::string("7 ENTER operator==(") + other.text.c_str() + ')');
    return major == other.major && minor == other.minor &&
           (verification == 0 || other.verification == 0 || verification == other.verification);
}

} // namespace fuzz
