/**
 * @file
 * @brief Messages where memory is short and what the trace library throws; the library here needs
 * no memory itself.
 */
#include "Allocations.h"
#include "ErrnoText.h"
#include "HvxMessage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>

namespace
{

enum Misdeed
{
    NoMisdeed,
    NoMemoryAtBegin,
    NoMemoryAtData,
    NoMemoryAtEnd,
    ErrorAtEnd
};

Misdeed misdeed = NoMisdeed;
std::array<char, 8192> written{};
std::size_t writtenSize = 0;

void add(const char* data, std::size_t length)
{
    std::memcpy(written.data() + writtenSize, data, length);
    writtenSize += length;
}

HvxTraceState state{{0, 0}, 7};

} // namespace

HvxTrace::HvxTrace(const std::string& /*name*/, HvxTraceLevel /*level*/) : m_state(&state) {}
HvxTrace::~HvxTrace() = default;

void HvxTrace::beginLogMsg(HvxTraceLevel /*level*/, const HvxTraceHeader& /*header*/)
{
    errno = 99;
    if (misdeed == NoMemoryAtBegin) {
        throw std::bad_alloc();
    }
    add("<", 1);
}

void HvxTrace::logMsgData(const char* data, unsigned int length)
{
    if (misdeed == NoMemoryAtData) {
        throw std::bad_alloc();
    }
    add(data, length);
}

void HvxTrace::logMsgData(char character)
{
    logMsgData(&character, 1);
}

void HvxTrace::endLogMsg()
{
    if (misdeed == NoMemoryAtEnd) {
        throw std::bad_alloc();
    }
    if (misdeed == ErrorAtEnd) {
        throw std::runtime_error("no log");
    }
    add(">", 1);
}

namespace
{

HvxTrace channel{"test.memory", 3};

std::string takeWritten()
{
    std::string text(written.data(), writtenSize);
    writtenSize = 0;
    return text;
}

/** Runs something while operator new fails; returns how often that was called. */
template <typename Function> long withoutMemory(Function function)
{
    const long before = testsupport::countedAllocations();
    testsupport::failAllocations(LONG_MAX);
    function();
    testsupport::failAllocations(0);
    return testsupport::countedAllocations() - before;
}

TEST(LowMemory, LeavesMessagesWhole)
{
    const std::string name(300, 'n');
    const long allocations = withoutMemory([&name] {
        TRACE_MESSAGE(channel, trace::Error,
                      "cannot open " << name << ": " << syscalls::errnoText(ENOENT) << ' ' << -5);
        TRACE_ENTER_WITH(channel, "fd=" << 7);
        TRACE_ENTER(channel);
    });
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(takeWritten(), "<operator()(): cannot open " + name +
                                 ": No such file or directory -5>"
                                 "<ENTER operator()(fd=7)><ENTER operator()()>");
}

TEST(LowMemory, DropsALongMessageAsAWhole)
{
    const std::string name(5000, 'n');
    errno = ENOENT;
    withoutMemory([&name] {
        TRACE_MESSAGE(channel, trace::Error, "cannot open " << name << ": " << errno);
        TRACE_ENTER_WITH(channel, name << 5);
    });
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(takeWritten(), "");

    TRACE_MESSAGE(channel, trace::Error, "cannot open " << name << ": " << errno);
    EXPECT_EQ(takeWritten(), "<TestBody(): cannot open " + name + ": 2>");
}

TEST(LowMemory, LeavesTheLongestTextThatNeedsNoneWhole)
{
    const std::string longest(512, 'n');
    withoutMemory([&longest] {
        trace::MessageText whole;
        whole << longest;
        EXPECT_EQ(whole.view(), longest);
        EXPECT_FALSE(whole.isLost());
        EXPECT_TRUE((whole << 'n').isLost());
    });
}

std::size_t largestAllocation = 0;

TEST(LowMemory, IsNotWastedOnALongText)
{
    const std::string name(5000, 'n');
    trace::MessageText text;
    testsupport::observeAllocations(
        [](std::size_t size) { largestAllocation = std::max(largestAllocation, size); });
    text << name;
    testsupport::observeAllocations(nullptr);
    EXPECT_EQ(text.view(), name);
    EXPECT_LE(largestAllocation, 2 * name.size());
}

class LibraryWithoutMemory : public testing::TestWithParam<Misdeed>
{};

TEST_P(LibraryWithoutMemory, LosesItsMessageAndNothingElse)
{
    misdeed = GetParam();
    errno = ENOENT;
    TRACE_MESSAGE(channel, trace::Error, "text");
    TRACE_ENTER_WITH(channel, "text");
    TRACE_ENTER(channel);
    EXPECT_EQ(errno, ENOENT);
    takeWritten();
    misdeed = NoMisdeed;
    TRACE_MESSAGE(channel, trace::Error, "text");
    EXPECT_EQ(takeWritten(), "<TestBody(): text>");
}

INSTANTIATE_TEST_SUITE_P(At, LibraryWithoutMemory,
                         testing::Values(NoMemoryAtBegin, NoMemoryAtData, NoMemoryAtEnd));

int throwing()
{
    throw std::runtime_error("no answer");
}

TEST(Value, ThatThrowsIsTheCallersMatter)
{
    const auto trace = [] { TRACE_MESSAGE(channel, trace::Error, "number " << throwing()); };
    EXPECT_THROW(trace(), std::runtime_error);
    EXPECT_EQ(takeWritten(), "");
}

TEST(Library, ThatFailsOtherwiseIsTheCallersMatter)
{
    misdeed = ErrorAtEnd;
    const auto trace = [] { TRACE_MESSAGE(channel, trace::Error, "text"); };
    EXPECT_THROW(trace(), std::runtime_error);
}

} // namespace
