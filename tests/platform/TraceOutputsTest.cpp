#include "Program.h"
#include "Sandbox.h"
#include "Sanitizers.h"
#include "SystemLog.h"
#include "TraceTest.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

using namespace testing;
using namespace testsupport;

using TraceOutputs = TraceTest;

TEST_F(TraceOutputs, CanBeNone)
{
    setOutput("none");
    testing::internal::CaptureStderr();
    write("text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(TraceOutputs, CanBeStandardError)
{
    setOutput("stderr");
    testing::internal::CaptureStderr();
    write("text");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), EndsWith("] 1 folder/file.cpp:42 text\n"));
}

TEST_F(TraceOutputs, MayBeAPipeThatNobodyReads)
{
    setOutput("stderr");
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    ::close(pipe[0]);
    {
        const StandardErrorAs standardError(pipe[1]);
        write("text");
    }

    sigset_t pending{};
    EXPECT_EQ(::sigpending(&pending), 0);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t blocked{};
    EXPECT_EQ(::pthread_sigmask(SIG_BLOCK, nullptr, &blocked), 0);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
}

TEST_F(TraceOutputs, MayBeClosed)
{
    setOutput("stderr");
    const int before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    ::close(STDERR_FILENO);
    write("text");
    ::dup2(before, STDERR_FILENO);
    SUCCEED();
}

TEST_F(TraceOutputs, AreNotTheFileThatHasStandardErrorsDescriptor)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator itself opens files on missing descriptors";
    }
    setOutput("stderr");
    setLevels("bad");
    testsupport::writeFile(file, "");
    Program program = programAt(TRACE_CLIENT, {"reuse", file});
    const Outcome open = program.run();
    EXPECT_THAT(open.err, EndsWith("] 1 file.cpp:7 text\n"));
    EXPECT_EQ(open.status, 3);

    program.prepare = [] { ::close(STDERR_FILENO); };
    const Outcome closed = program.run();
    EXPECT_EQ(closed.status, 0);
    EXPECT_EQ(readFile(file), "");
}

TEST_F(TraceOutputs, CanBeAFileThatIsAppendedTo)
{
    testsupport::writeFile(file, "earlier\n");
    write("text");
    EXPECT_THAT(lines(), ElementsAre("earlier", EndsWith(" text")));
}

TEST_F(TraceOutputs, CanBeAFileThatIsMovedAway)
{
    HvxTrace channel("channel", 3);
    write(channel, 1, "first");
    std::filesystem::rename(file, file + ".old");
    write(channel, 1, "second");
    EXPECT_THAT(readFile(file + ".old"), EndsWith(" first\n"));
    EXPECT_THAT(texts(), ElementsAre("second"));
}

TEST_F(TraceOutputs, AreFoundAfterTheProgramChangedItsDirectory)
{
    ASSERT_EQ(::chdir(directory.path().c_str()), 0);
    setOutput("trace");
    HvxTrace channel("channel", 3);
    ASSERT_EQ(::chdir("/"), 0);
    write(channel, 1, "text");
    EXPECT_THAT(texts(), ElementsAre("text"));
}

/** The trace library in a process of its own, with a system log of its own. */
class SystemLog : public TraceTest
{
protected:
    Outcome trace(const std::string& level, const std::string& text) const
    {
        return withSystemLog(directory.file("log"), TRACE_CLIENT, {"channel", level, text}).run();
    }

    /** What the system log got. */
    std::vector<std::string> logged() const { return receiveAll(socket); }

    const syscalls::FileDescriptor socket = makeSystemLog(directory.file("log"), SOCK_DGRAM);
};

TEST_F(SystemLog, IsTheDefault)
{
    for (const char* output : {"", "syslog"}) {
        setOutput(output);
        EXPECT_EQ(trace("1", "text"), answer());
        const auto messages = logged();
        EXPECT_THAT(messages, SizeIs(2));
        for (const std::string& message : messages) {
            EXPECT_THAT(message, StartsWith("<11>")); // an error of a program
            EXPECT_THAT(message, HasSubstr(" channel["));
            EXPECT_THAT(message, HasSubstr("] 1 file.cpp:7 text"));
        }
    }
}

TEST_F(SystemLog, CanBeUsedByAProcessForkedAtAnyMoment)
{
    if (!std::string(BSP_TEST_EMULATOR).empty()) {
        GTEST_SKIP() << "the emulator itself can hang in a process forked beside other threads";
    }
    if (!canForkBesideThreads()) {
        GTEST_SKIP() << NoForkBesideThreads;
    }
    setOutput("syslog");
    // Nobody listens, or the log would fill up.
    EXPECT_EQ(withoutSystemLog(TRACE_CLIENT, {"forks"}).run(), answer());
}

TEST_F(SystemLog, GetsTheLevelAsItsPriority)
{
    setOutput("syslog");
    setLevels("*=7");
    const std::vector<std::string> priorities = {"<11>", "<12>", "<12>", "<14>",
                                                 "<14>", "<15>", "<15>"};
    for (std::size_t i = 0; i < priorities.size(); ++i) {
        trace(std::to_string(i + 1), "text");
        EXPECT_THAT(logged(), ElementsAre(StartsWith(priorities[i]), StartsWith(priorities[i])));
    }
}

TEST_F(SystemLog, DoesNotTakeTextsAsFormats)
{
    setOutput("syslog");
    trace("1", "100%s%n");
    EXPECT_THAT(logged(), ElementsAre(HasSubstr("100%s%n"), HasSubstr("100%s%n")));
}

TEST_F(SystemLog, MayBeFull)
{
    setOutput("syslog");
    const int sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = addressOf(directory.file("log"));
    const auto* const log = reinterpret_cast<const sockaddr*>(&address);
    while (::sendto(sender, "x", 1, 0, log, sizeof address) == 1) {
    }
    ::close(sender);
    EXPECT_EQ(trace("1", "text"), answer());
    EXPECT_THAT(logged(), Each("x"));
}

TEST_F(SystemLog, GetsWhatCannotGoToAFile)
{
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const std::pair<std::string, std::string> cases[] = {
        {directory.file("missing/trace"), "No such file or directory"},
        {directory.path().string(), "Is a directory"},
        {file, "No such device or address"},
    };
    for (const auto& [output, why] : cases) {
        setOutput(output);
        EXPECT_EQ(
            trace("1", "text"),
            refusal("qeltrace: ignoring '" + output + "' in QELTRACE_OUTPUT: " + why + "\n", 0));
        EXPECT_THAT(logged(), SizeIs(2));
    }
}

TEST_F(SystemLog, MayBeMissing)
{
    setOutput("syslog");
    EXPECT_EQ(withoutSystemLog(TRACE_CLIENT, {"channel", "1", "text"}).run(), answer());
}

} // namespace
