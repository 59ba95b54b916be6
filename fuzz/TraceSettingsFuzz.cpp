/**
 * @file
 * @brief Fuzzes the settings of the trace, the channels' names and the texts of messages.
 */
#include "Child.h"
#include "Expect.h"
#include "HvxTrace.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include <fnmatch.h>
#include <unistd.h>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using fuzz::expectEqual;

const std::string File = "/tmp/fuzz-trace";

struct Case
{
    std::string levels;
    std::string output;
    std::string channel;
    std::string text;
    HvxTraceLevel level;
    bool byClass;
};

/** One piece of a line: a letter, or the escape of a byte that is part of none. */
std::vector<std::string> pieces(const std::string& text)
{
    std::vector<std::string> result;
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = [&](std::size_t k) {
            return i + k < text.size() ? static_cast<unsigned char>(text[i + k]) : 0U;
        };
        const unsigned int lead = byte(0);
        std::size_t length = 1;
        unsigned long point = lead;
        unsigned long least = 0;
        if (lead >= 0xF0 && lead < 0xF8) {
            length = 4, point = lead & 7U, least = 0x10000;
        } else if (lead >= 0xE0) {
            length = 3, point = lead & 15U, least = 0x800;
        } else if (lead >= 0xC0) {
            length = 2, point = lead & 31U, least = 0x80;
        }
        bool isLetter = lead < 0x80 || (lead >= 0xC0 && lead < 0xF8);
        for (std::size_t k = 1; k < length; ++k) {
            isLetter = isLetter && (byte(k) & 0xC0U) == 0x80;
            point = point << 6U | (byte(k) & 0x3FU);
        }
        const bool isControl = point < 0x20 || (point >= 0x7F && point < 0xA0);
        const bool isSurrogate = point >= 0xD800 && point < 0xE000;
        isLetter = isLetter && point >= least && point <= 0x10FFFF && !isControl && !isSurrogate &&
                   point != '\\';
        if (isLetter) {
            result.push_back(text.substr(i, length));
            i += length;
        } else {
            constexpr const char* Digits = "0123456789ABCDEF";
            result.push_back({'\\', 'x', Digits[lead >> 4U], Digits[lead & 15U]});
            ++i;
        }
    }
    return result;
}

/** The text as one line that a pipe takes at once. */
std::string line(std::string text)
{
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    std::string whole;
    std::string cut;
    for (const std::string& piece : pieces(text)) {
        whole += piece;
        cut = whole.size() <= PIPE_BUF - 1 - 3 ? whole : cut;
    }
    return (whole.size() <= PIPE_BUF - 1 ? whole : cut + "...") + '\n';
}

int rank(const std::string& pattern)
{
    if (pattern == "*") {
        return 0;
    }
    return pattern.find_first_of("*?[") == std::string::npos ? 2 : 1;
}

/** The channel's level, and what is said about the settings that are none. */
HvxTraceLevel levelOf(const Case& input, std::string& complaints)
{
    HvxTraceLevel level = 3;
    int best = -1;
    std::string rest = input.levels;
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        const std::string item = rest.substr(0, comma);
        rest = comma == std::string::npos ? "" : rest.substr(comma + 1);
        const std::size_t equals = item.find_last_of('=');
        std::string reason;
        if (equals == std::string::npos || equals == 0 || item.find(' ') != std::string::npos) {
            reason = "not of the form CHANNEL=LEVEL";
        } else if (item.size() != equals + 2 || item.back() < '0' || item.back() > '7') {
            reason = "the level is not one of 0 to 7";
        }
        if (!reason.empty()) {
            complaints += line("qeltrace: ignoring '" + item + "' in QELTRACE_LEVEL: " + reason);
            continue;
        }
        const std::string pattern = item.substr(0, equals);
        const bool matches =
            ::fnmatch(pattern.c_str(), input.channel.c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0;
        if (matches && rank(pattern) >= best) {
            best = rank(pattern);
            level = static_cast<HvxTraceLevel>(item.back() - '0');
        }
    }
    return level;
}

constexpr HvxTraceHeader Here{"some/file.cpp", 42, "function"};

/** In the child: sets up, writes the message, and tells its number and the channel's level. */
std::string trace(const Case& input)
{
    ::setenv("QELTRACE_LEVEL", input.levels.c_str(), 1);
    ::setenv("QELTRACE_OUTPUT", input.output.c_str(), 1);
    HvxTraceLevel level = 0;
    if (input.byClass) {
        HvxTrace channel(input.channel, 3);
        level = channel.m_state->level;
        channel.beginLogMsg(input.level, Here);
        channel.logMsgData(input.text.data(), static_cast<unsigned int>(input.text.size()));
        channel.endLogMsg();
    } else {
        GT_TraceRecord record{TraceRecordStartLevel, input.channel.c_str()};
        GT_printf2(&record, input.level, &Here, "%s", input.text.c_str());
        level = record.level;
    }
    return std::to_string(::getpid()) + ' ' + std::to_string(level);
}

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void run(const Case& input)
{
    std::filesystem::remove(File);
    const fuzz::ChildResult got = fuzz::inChild([&] { return trace(input); });
    std::string errors;
    const HvxTraceLevel level = levelOf(input, errors);
    const std::string process = got.answer.substr(0, got.answer.find(' '));
    expectEqual("the level", got.answer, process + ' ' + std::to_string(level));

    std::string wanted;
    constexpr std::size_t TimeSize = sizeof "2000-01-01T00:00:00.000000Z" - 1;
    std::string written = input.output == File
                              ? contents(File)
                              : got.errors.substr(std::min(errors.size(), got.errors.size()));
    if (input.level <= level && (input.output == File || input.output == "stderr")) {
        const std::string text = input.byClass ? input.text : input.text.c_str();
        wanted = line(std::string(TimeSize, 'T') + ' ' + input.channel + '[' + process + "] " +
                      std::to_string(input.level) + " some/file.cpp:42 " + text);
        written.replace(0, std::min(TimeSize, written.size()), TimeSize, 'T');
    }
    expectEqual("the message", written, wanted);
    expectEqual("the complaints", got.errors.substr(0, errors.size()), errors);
}

std::string anyLevels(FuzzedDataProvider& input, const std::string& channel)
{
    std::string levels;
    for (int items = input.ConsumeIntegralInRange<int>(0, 4); items > 0; --items) {
        switch (input.ConsumeIntegralInRange<int>(0, 4)) {
        case 0:
            levels += channel + '=';
            break;
        case 1:
            levels += "*=";
            break;
        case 2:
            levels += channel.substr(0, 1) + "*=";
            break;
        default:
            levels += input.ConsumeRandomLengthString(12);
            break;
        }
        levels += static_cast<char>('0' + input.ConsumeIntegralInRange<int>(0, 8));
        levels += items > 1 ? "," : "";
    }
    return levels.c_str(); // the environment's texts end with a NUL
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Case made;
    made.byClass = input.ConsumeBool();
    made.level = input.ConsumeIntegralInRange<HvxTraceLevel>(0, 8);
    made.output = input.PickValueInArray({"none", "stderr", "stderr", "/tmp/fuzz-trace"});
    made.channel = input.ConsumeBool() ? "bsp.core" : input.ConsumeRandomLengthString(12).c_str();
    made.levels = anyLevels(input, made.channel);
    if (input.ConsumeIntegralInRange<int>(0, 7) == 0) {
        made.text.assign(input.ConsumeIntegralInRange<std::size_t>(3900, 4200), 'x');
    }
    made.text += input.ConsumeRemainingBytesAsString();
    run(made);
    return 0;
}
