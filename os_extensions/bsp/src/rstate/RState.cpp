#include "RState.h"

#include "ConstantNames.h"
#include "GtMessage.h"
#include "rstate/Letters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <ostream>

// A program in C++11 or C++14 needs these definitions to take the constants' addresses.
// NOLINTBEGIN(readability-redundant-declaration): redundant from C++17 on only
constexpr int32_t RState::MaxMinorSize1Char;
constexpr int32_t RState::MaxMinorSize2Chars;
constexpr int32_t RState::MaxMinorSize3Chars;
constexpr int32_t RState::MaxMinorSize4Chars;
constexpr int32_t RState::MaxMinorPos1;
constexpr int32_t RState::MaxMinorPos2;
constexpr int32_t RState::MaxMinorPos3;
constexpr int32_t RState::MaxMinorPos4;
constexpr int32_t RState::MaxRStateLen;
// NOLINTEND(readability-redundant-declaration)

GT_TraceRecord RState::m_trace{TraceRecordStartLevel, "bsp.rstate"};

namespace
{

constexpr os::bsp::ConstantName incrementTypeNames[] = {
    RSTATE_INCREMENT_TYPE_ROWS(BSP_NAME_ROW, IncrementType) BSP_NAME_ROW(IncrementType, EndOfList)};

/** Verifications from here on are carried into the minor, and are refused in a text. */
constexpr int32_t EndOfVerifications = 1000;

/** The next number; after the largest one it wraps instead of trapping. */
constexpr int32_t next(int32_t number)
{
    return static_cast<int32_t>(static_cast<uint32_t>(number) + 1U);
}

/** The decimal number at the text's start, its digits passed; at most what 32 bits can hold. */
int32_t readNumber(const char*& text)
{
    int64_t number = 0;
    while (rstate::isDigit(*text)) {
        number = std::min<int64_t>(number * 10 + (*text++ - '0'), INT32_MAX);
    }
    return static_cast<int32_t>(number);
}

} // namespace

RState::RState(const std::string& text) : RState(text.data(), text.size()) {}

RState::RState(const char* text) : RState(text, text == nullptr ? 0 : std::strlen(text)) {}

RState::RState(const char* text, std::size_t length) : m_text(text, length)
{
    TRACE_PRINTF(m_trace, trace::Entry, "ENTER %s()\n", __func__);
    updateVersion();
    TRACE_PRINTF(m_trace, trace::Result, "%s(): R-state: %s, version: %d.%d.%d\n", __func__,
                 m_text.c_str(), m_major, m_minor, m_verification);
}

RState::RState(int32_t major, int32_t minor, int32_t verification)
    : m_major(major), m_minor(minor), m_verification(verification)
{
    TRACE_PRINTF(m_trace, trace::Entry, "ENTER %s()\n", __func__);
    updateRState();
    TRACE_PRINTF(m_trace, trace::Notice, "%s(): R-state: %s, version: %d.%d.%d\n", __func__,
                 m_text.c_str(), m_major, m_minor, m_verification);
}

bool RState::updateVersion()
{
    const char* text = m_text.c_str();
    if (*text != 'R') {
        TRACE_PRINTF(m_trace, trace::Error, "%s(): First letter not R\n", __func__);
        return false;
    }
    ++text;
    if (!rstate::isDigit(*text)) {
        TRACE_PRINTF(m_trace, trace::Error, "%s(): No digit after R\n", __func__);
        return false;
    }
    m_major = readNumber(text);
    if (m_major < 1) {
        TRACE_PRINTF(m_trace, trace::Error, "%s(): R-state number not larger than 0\n", __func__);
        return false;
    }
    if (!rstate::isUpper(*text)) {
        TRACE_PRINTF(m_trace, trace::Error, "%s(): No R-state letter(s) after number\n", __func__);
        return false;
    }
    m_minor = rstate::readLetters(text);
    m_verification = rstate::isDigit(*text) ? readNumber(text) : 0;
    if (m_verification >= EndOfVerifications) {
        TRACE_PRINTF(m_trace, trace::Error, "%s(): Illegal verification state: %d\n", __func__,
                     m_verification);
        return false;
    }
    return true;
}

bool RState::updateRState()
{
    std::array<char, 32> buffer; // "R", two numbers of up to 11 characters, four letters
    char* const bufferEnd = buffer.data() + buffer.size();
    char* end = buffer.data();
    *end++ = 'R';
    end = std::to_chars(end, bufferEnd, m_major).ptr;
    end = rstate::writeLetters(end, m_minor);
    if (m_verification > 0) {
        if (m_verification < 10) {
            *end++ = '0';
        }
        end = std::to_chars(end, bufferEnd, m_verification).ptr;
    }
    m_text.assign(buffer.data(), end);
    return true;
}

void RState::normalizeVersion()
{
    if (m_verification >= EndOfVerifications) {
        m_minor = next(m_minor);
        m_verification = 1;
    }
    if (m_minor >= MaxMinorSize4Chars) {
        m_major = next(m_major);
        m_minor = 0;
    }
}

void RState::increment(IncrementType type)
{
    TRACE_PRINTF(m_trace, trace::Entry, "ENTER %s(%s)\n", __func__,
                 os::bsp::nameOf(incrementTypeNames, static_cast<int>(type)));
    const bool verified = m_verification >= 1;
    switch (type) {
    case IncrementType::Auto:
        (verified ? m_verification : m_minor) = next(verified ? m_verification : m_minor);
        break;
    case IncrementType::Revision:
        m_verification = verified ? next(m_verification) : m_verification;
        break;
    case IncrementType::Minor:
        m_minor = next(m_minor);
        m_verification = verified ? 1 : m_verification;
        break;
    case IncrementType::Major:
        m_major = next(m_major);
        m_minor = 0;
        m_verification = verified ? 1 : m_verification;
        break;
    case IncrementType::EndOfList:
    default:
        TRACE_PRINTF(m_trace, trace::Error, "%s(%d): Invalid parameter\n", __func__,
                     static_cast<int>(type));
        return;
    }
    normalizeVersion();
    updateRState();
}

bool RState::operator<(const RState& other) const
{
    TRACE_PRINTF(m_trace, trace::Detail, "ENTER %s(%s)\n", __func__, other.m_text.c_str());
    if (m_major != other.m_major) {
        return m_major < other.m_major;
    }
    if (m_minor != other.m_minor) {
        return m_minor < other.m_minor;
    }
    return m_verification != 0 && other.m_verification != 0 &&
           m_verification < other.m_verification;
}

bool RState::operator==(const RState& other) const
{
    TRACE_PRINTF(m_trace, trace::Detail, "ENTER %s(%s)\n", __func__, other.m_text.c_str());
    return m_major == other.m_major && m_minor == other.m_minor &&
           (m_verification == 0 || other.m_verification == 0 ||
            m_verification == other.m_verification);
}

std::ostream& operator<<(std::ostream& stream, const RState& rstate)
{
    return stream << rstate.getText();
}

namespace
{

/** Copies the text and its NUL. */
void write(char* buffer, const RState& rstate)
{
    std::memcpy(buffer, rstate.getText().c_str(), rstate.getText().size() + 1);
}

} // namespace

int RState_toVersion(const char* rstate, int* major, int* minor, int* verification)
{
    const RState parsed(rstate);
    *major = parsed.getMajor();
    *minor = parsed.getMinor();
    *verification = parsed.getVerification();
    return 1;
}

int RState_fromVersion(char* rstate, int major, int minor, int verification)
{
    if (rstate == nullptr) {
        return 0;
    }
    write(rstate, RState(major, minor, verification));
    return 1;
}

int RState_compare(const char* a, const char* b)
{
    const RState first(a);
    const RState second(b);
    if (first < second) {
        return -1;
    }
    return first == second ? 0 : 1;
}

int RState_increment(char* rstate, unsigned int size, IncrementType type)
{
    if (rstate == nullptr) {
        return 0;
    }
    RState stepped(rstate);
    stepped.increment(type);
    if (stepped.getText().size() >= size) {
        return 0;
    }
    write(rstate, stepped);
    return 1;
}

int RState_increment2(char* rstate, unsigned int size, const char* typeName)
{
    if (typeName == nullptr) {
        return 0;
    }
    for (const os::bsp::ConstantName& entry : incrementTypeNames) {
        const auto type = static_cast<IncrementType>(entry.value);
        if (type != IncrementType::EndOfList && std::strcmp(entry.text, typeName) == 0) {
            return RState_increment(rstate, size, type);
        }
    }
    return 0;
}

const char* RState_incrementTypeName(int type)
{
    return os::bsp::nameOf(incrementTypeNames, type);
}
