#ifndef TESTS_PLATFORM_TRACETEST_H
#define TESTS_PLATFORM_TRACETEST_H

#include "Files.h"
#include "HvxTrace.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include <unistd.h>

namespace testsupport
{

constexpr HvxTraceHeader Header{"folder/file.cpp", 42, "function"};

/** The library reads its settings once: a case makes them before it writes. */
class TraceTest : public testing::Test
{
protected:
    TraceTest() : file(directory.file("trace"))
    {
        ::setenv("QELTRACE_OUTPUT", file.c_str(), 1);
        ::unsetenv("QELTRACE_LEVEL");
    }

    static void setLevels(const char* levels) { ::setenv("QELTRACE_LEVEL", levels, 1); }
    static void setOutput(const std::string& output)
    {
        ::setenv("QELTRACE_OUTPUT", output.c_str(), 1);
    }

    static void write(HvxTrace& channel, HvxTraceLevel level, const std::string& text)
    {
        channel.beginLogMsg(level, Header);
        channel.logMsgData(text.data(), static_cast<unsigned int>(text.size()));
        channel.endLogMsg();
    }

    /** Writes one message of a channel of its own. */
    static void write(const std::string& text, HvxTraceLevel level = 1)
    {
        HvxTrace channel("channel", 3);
        write(channel, level, text);
    }

    /** The channel's level as its modules see it. */
    static HvxTraceLevel levelOf(const std::string& name)
    {
        const HvxTrace channel(name, 3);
        return channel.m_state->level;
    }

    static void expectLevel(HvxTraceLevel level, const std::vector<std::string>& channels)
    {
        for (const std::string& channel : channels) {
            EXPECT_EQ(levelOf(channel), level) << channel;
        }
    }

    std::vector<std::string> lines() const
    {
        return std::filesystem::exists(file) ? linesOf(readFile(file)) : std::vector<std::string>{};
    }
    /** The lines' texts alone. */
    std::vector<std::string> texts() const
    {
        std::vector<std::string> result;
        const std::string end = "folder/file.cpp:42 ";
        for (const std::string& line : lines()) {
            result.push_back(line.substr(line.find(end) + end.size()));
        }
        return result;
    }

    const TemporaryDirectory directory;
    const std::string file;
};

} // namespace testsupport

#endif
