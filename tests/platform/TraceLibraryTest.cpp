#include "Files.h"
#include "HvxTrace.h"
#include "Program.h"
#include "Sandbox.h"
#include "TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <optional>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::StartsWith;
using testsupport::Outcome;
using testsupport::Program;
using testsupport::readFile;
using testsupport::TemporaryDirectory;

constexpr HvxTraceHeader Header{"folder/file.cpp", 42, "function"};

/** The time that the library is told, when it is not the real one. */
std::optional<timespec> timeOfDay;

} // namespace

extern "C"
{
    int __real_clock_gettime(clockid_t clock, timespec* time);
    int __wrap_clock_gettime(clockid_t clock, timespec* time);
}

int __wrap_clock_gettime(clockid_t clock, timespec* time)
{
    if (timeOfDay) {
        *time = *timeOfDay;
        return 0;
    }
    return __real_clock_gettime(clock, time);
}

namespace
{

/** The library reads its settings once: a case makes them before it writes. */
class TraceLibrary : public testing::Test
{
protected:
    TraceLibrary() : file(directory.file("trace"))
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

    /** The channel's level as its modules see it. */
    static HvxTraceLevel levelOf(const std::string& name)
    {
        const HvxTrace channel(name, 3);
        return channel.m_state->level;
    }

    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        if (std::filesystem::exists(file)) {
            std::istringstream stream(readFile(file));
            for (std::string line; std::getline(stream, line);) {
                result.push_back(line);
            }
        }
        return result;
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

using TraceLevels = TraceLibrary;
using TraceRecords = TraceLibrary;
using TraceOutputs = TraceLibrary;

TEST_F(TraceLibrary, WritesALineForEachMessage)
{
    HvxTrace channel("a.channel", 3);
    write(channel, 1, "first");
    write(channel, 3, "");
    const std::string start = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{6}Z "
                              "a[.]channel[[]" +
                              std::to_string(::getpid()) + "[]] ";
    EXPECT_THAT(lines(), ElementsAre(MatchesRegex(start + "1 folder/file[.]cpp:42 first"),
                                     MatchesRegex(start + "3 folder/file[.]cpp:42 ")));
}

TEST_F(TraceLibrary, PutsAMessageTogetherFromItsPieces)
{
    HvxTrace channel("channel", 3);
    channel.beginLogMsg(1, Header);
    channel.logMsgData("ENTER name", 10);
    channel.logMsgData('(');
    channel.logMsgData("fd=7 and more", 4);
    channel.logMsgData(')');
    channel.endLogMsg();
    EXPECT_THAT(texts(), ElementsAre("ENTER name(fd=7)"));
}

TEST_F(TraceLibrary, FormatsAsPrintf)
{
    GT_TraceRecord record{TraceRecordStartLevel, "record"};
    GT_printf2(&record, 1, &Header, "%s(%d, %p, %d) called\n", "Led_write", -3, nullptr, 12);
    GT_printf2(&record, 1, &Header, "100%%");
    EXPECT_THAT(texts(), ElementsAre("Led_write(-3, (nil), 12) called", "100%"));
}

TEST_F(TraceLibrary, KeepsEachMessageOnOneLine)
{
    HvxTrace channel("chan\nnel", 3);
    write(channel, 1,
          "a\nb\tc\x7F"
          "d\x1B[0m\r" +
              std::string(1, '\0') + "e\n\n");
    EXPECT_THAT(lines(), SizeIs(1));
    EXPECT_THAT(lines()[0], HasSubstr(" chan\\x0Anel["));
    EXPECT_THAT(texts(), ElementsAre("a\\x0Ab\\x09c\\x7Fd\\x1B[0m\\x0D\\x00e\\x0A"));
}

TEST_F(TraceLibrary, LeavesOtherLettersAlone)
{
    HvxTrace channel("channel", 3);
    write(channel, 1, "M\xC3\xBCller \xFF");
    EXPECT_THAT(texts(), ElementsAre("M\xC3\xBCller \xFF"));
}

TEST_F(TraceLibrary, CutsWhatAPipeWouldNotTakeInOnePiece)
{
    HvxTrace channel("channel", 3);
    write(channel, 1, std::string(5000, 'x'));
    GT_TraceRecord record{TraceRecordStartLevel, "channel"};
    GT_printf2(&record, 1, &Header, "%s\n", std::string(1000000, 'y').c_str());
    EXPECT_THAT(lines(), ElementsAre(AllOf(SizeIs(4095), EndsWith("xxx...")),
                                     AllOf(SizeIs(4095), EndsWith("yyy..."))));
}

TEST_F(TraceLibrary, CutsBetweenTwoCharacters)
{
    HvxTrace channel("channel", 3);
    for (int i = 0; i < 2; ++i) {
        std::string text(static_cast<std::size_t>(i), '.');
        for (int j = 0; j < 2500; ++j) {
            text += "\xC3\xBC";
        }
        write(channel, 1, text);
    }
    EXPECT_THAT(lines(), ElementsAre(EndsWith("\xC3\xBC..."), EndsWith("\xC3\xBC...")));
}

TEST_F(TraceLibrary, KeepsMessagesOfManyThreadsWhole)
{
    HvxTrace channel("channel", 3);
    std::vector<std::thread> threads;
    for (char letter = 'a'; letter < 'i'; ++letter) {
        threads.emplace_back([&channel, letter] {
            GT_TraceRecord record{TraceRecordStartLevel, "channel"};
            for (int i = 0; i < 50; ++i) {
                write(channel, 1, std::string(200, letter));
                GT_printf2(&record, 1, &Header, "%s\n", std::string(300, letter).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(lines(), SizeIs(800));
    for (const std::string& text : texts()) {
        EXPECT_EQ(text, std::string(text.size(), text.at(0)));
        EXPECT_TRUE(text.size() == 200 || text.size() == 300) << text;
    }
}

TEST_F(TraceLibrary, KeepsMessagesOfManyProcessesWhole)
{
    HvxTrace channel("channel", 3);
    std::vector<pid_t> processes;
    for (char letter = 'a'; letter < 'i'; ++letter) {
        const pid_t process = ::fork();
        if (process == 0) {
            for (int i = 0; i < 50; ++i) {
                write(channel, 1, std::string(3000, letter));
            }
            ::_exit(0);
        }
        processes.push_back(process);
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(testsupport::waitFor(process), 0);
        EXPECT_THAT(lines(), Contains(HasSubstr("channel[" + std::to_string(process) + "] 1 ")));
    }
    EXPECT_THAT(lines(), SizeIs(400));
    for (const std::string& text : texts()) {
        EXPECT_EQ(text, std::string(3000, text.at(0)));
    }
}

TEST_F(TraceLibrary, CanBeUsedByAProcessForkedAtAnyMoment)
{
    Program program{};
    program.path = TRACE_CLIENT;
    program.arguments = {"forks"};
    const Outcome outcome = program.run();
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    int forked = 0;
    for (const std::string& line : lines()) {
        forked += line.find(" forked[") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(forked, 100);
}

TEST_F(TraceLibrary, TellsTheTime)
{
    constexpr std::time_t Day = 24 * 60 * 60;
    HvxTrace channel("channel", 3);
    // Every day of four years with a leap day, then one day of each month for a long time.
    std::vector<std::time_t> times;
    for (std::time_t i = 0; i < 4 * 366; ++i) {
        times.push_back(1700000000 + i * Day + i);
    }
    for (std::time_t i = 0; i < 800; ++i) {
        times.push_back(i * 31 * Day + Day - 1);
    }
    std::vector<std::string> expected;
    for (const std::time_t time : times) {
        timeOfDay = {time, 1002003};
        write(channel, 1, "text");
        std::tm utc{};
        ::gmtime_r(&time, &utc);
        std::array<char, 64> text{};
        std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.001002Z ", &utc);
        expected.emplace_back(text.data());
    }
    const auto written = lines();
    ASSERT_EQ(written.size(), expected.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
        EXPECT_THAT(written[i], StartsWith(expected[i]));
    }
}

TEST_F(TraceLevels, AreThreeByDefault)
{
    HvxTrace channel("channel", 3);
    EXPECT_EQ(channel.m_state->level, 3U);
    write(channel, 4, "too much");
    write(channel, 3, "enough");
    GT_TraceRecord record{TraceRecordStartLevel, "record"};
    GT_printf2(&record, 4, &Header, "too much\n");
    GT_printf2(&record, 3, &Header, "enough\n");
    EXPECT_THAT(texts(), ElementsAre("enough", "enough"));
}

TEST_F(TraceLevels, AreTheThirdWordOfTheState)
{
    setLevels("channel=6");
    const HvxTrace channel("channel", 3);
    uint32_t word = 0;
    std::memcpy(&word, reinterpret_cast<const char*>(channel.m_state) + 8, sizeof word);
    EXPECT_EQ(word, 6U);
}

TEST_F(TraceLevels, AreSetByTheChannelsExactName)
{
    setLevels("bsp.core=7,Bsp.WarmDatabase=5,a=b=4");
    EXPECT_EQ(levelOf("bsp.core"), 7U);
    EXPECT_EQ(levelOf("Bsp.WarmDatabase"), 5U);
    EXPECT_EQ(levelOf("a=b"), 4U);
    for (const char* other : {"bsp.cor", "bsp.core2", "Bsp.core", "bsp", "", "bsp.warmdatabase"}) {
        EXPECT_EQ(levelOf(other), 3U) << other;
    }
}

TEST_F(TraceLevels, AreSetForAllOthersByAStar)
{
    setLevels("*=6,bsp.led=0");
    EXPECT_EQ(levelOf("bsp.core"), 6U);
    EXPECT_EQ(levelOf("bsp.led"), 0U);
    GT_TraceRecord record{TraceRecordStartLevel, "bsp.led"};
    GT_printf2(&record, 1, &Header, "silent\n");
    EXPECT_EQ(record.level, 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TraceLevels, AreTheLastOnesSet)
{
    setLevels("a=1,*=2,a=5,*=7");
    EXPECT_EQ(levelOf("a"), 5U);
    EXPECT_EQ(levelOf("b"), 7U);
}

TEST_F(TraceLevels, AreReportedOnceAndIgnoredWhenTheyAreBad)
{
    setLevels("bsp.core,=4,a=,b=8,c=-1,d=07,e=x, f=5,g=6,*=1\n2");
    testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i) {
        for (const char* channel : {"bsp.core", "", "a", "b", "c", "d", "e", "f", " f"}) {
            EXPECT_EQ(levelOf(channel), 3U) << channel;
        }
        EXPECT_EQ(levelOf("g"), 6U);
    }
    const std::string form = " in QELTRACE_LEVEL: not of the form CHANNEL=LEVEL\n";
    const std::string level = " in QELTRACE_LEVEL: the level is not one of 0 to 7\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "qeltrace: ignoring 'bsp.core'" + form + "qeltrace: ignoring '=4'" + form +
                  "qeltrace: ignoring 'a='" + level + "qeltrace: ignoring 'b=8'" + level +
                  "qeltrace: ignoring 'c=-1'" + level + "qeltrace: ignoring 'd=07'" + level +
                  "qeltrace: ignoring 'e=x'" + level + "qeltrace: ignoring ' f=5'" + form +
                  "qeltrace: ignoring '*=1\\x0A2'" + level);
}

TEST_F(TraceLevels, AreThoseOfTheStart)
{
    setLevels("a=5");
    EXPECT_EQ(levelOf("a"), 5U);
    setLevels("a=6,b=6");
    EXPECT_EQ(levelOf("a"), 5U);
    EXPECT_EQ(levelOf("b"), 3U);
}

TEST_F(TraceLevels, CanBeChangedWhileTheProgramRuns)
{
    HvxTrace channel("channel", 3);
    channel.m_state->level = 5;
    write(channel, 5, "now");
    channel.m_state->level = 4;
    write(channel, 5, "no longer");
    EXPECT_THAT(texts(), ElementsAre("now"));
    EXPECT_EQ(levelOf("channel"), 4U);
}

TEST_F(TraceRecords, AreSettledByTheirFirstMessage)
{
    setLevels("loud=7");
    GT_TraceRecord quiet{TraceRecordStartLevel, "quiet"};
    GT_TraceRecord loud{TraceRecordStartLevel, "loud"};
    EXPECT_EQ(quiet.level, 0x1003U);
    GT_printf2(&quiet, 6, &Header, "not written\n");
    GT_printf2(&loud, 6, &Header, "written\n");
    EXPECT_EQ(quiet.level, 3U);
    EXPECT_EQ(loud.level, 7U);
    EXPECT_THAT(texts(), ElementsAre("written"));
}

TEST_F(TraceRecords, ShareTheChannelOfTheirName)
{
    setLevels("same=6");
    const HvxTrace channel("same", 3);
    channel.m_state->level = 2;
    GT_TraceRecord record{TraceRecordStartLevel, "same"};
    GT_printf2(&record, 3, &Header, "not written\n");
    EXPECT_EQ(record.level, 2U);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TraceOutputs, CanBeNone)
{
    setOutput("none");
    testing::internal::CaptureStderr();
    HvxTrace channel("channel", 3);
    write(channel, 1, "text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(TraceOutputs, CanBeStandardError)
{
    setOutput("stderr");
    testing::internal::CaptureStderr();
    HvxTrace channel("channel", 3);
    write(channel, 1, "text");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), EndsWith("] 1 folder/file.cpp:42 text\n"));
}

TEST_F(TraceOutputs, MayBeAPipeThatNobodyReads)
{
    setOutput("stderr");
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    ::close(pipe[0]);
    const int before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    ::dup2(pipe[1], STDERR_FILENO);
    HvxTrace channel("channel", 3);
    write(channel, 1, "text");
    ::dup2(before, STDERR_FILENO);

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
    HvxTrace channel("channel", 3);
    write(channel, 1, "text");
    ::dup2(before, STDERR_FILENO);
    SUCCEED();
}

TEST_F(TraceOutputs, CanBeAFileThatIsAppendedTo)
{
    testsupport::writeFile(file, "earlier\n");
    HvxTrace channel("channel", 3);
    write(channel, 1, "text");
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
class SystemLog : public TraceLibrary
{
protected:
    SystemLog() : socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        directory.file("log").copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    ~SystemLog() override { ::close(socket); }

    Outcome trace(const std::string& level, const std::string& text) const
    {
        return testsupport::sandboxed(
                   {"--dev", "/dev", "--bind", directory.file("log"), "/dev/log"}, TRACE_CLIENT,
                   {"channel", level, text})
            .run();
    }

    /** What the system log got. */
    std::vector<std::string> logged() const
    {
        std::vector<std::string> messages;
        std::array<char, 8192> buffer{};
        for (;;) {
            const ssize_t size = ::recv(socket, buffer.data(), buffer.size(), 0);
            if (size < 0) {
                return messages;
            }
            messages.emplace_back(buffer.data(), static_cast<std::size_t>(size));
        }
    }

    const int socket;
};

TEST_F(SystemLog, IsTheDefault)
{
    for (const char* output : {"", "syslog"}) {
        setOutput(output);
        const Outcome outcome = trace("1", "text");
        EXPECT_EQ(outcome.out + outcome.err, "");
        EXPECT_EQ(outcome.status, 0);
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
    setOutput("syslog");
    // Nobody listens, or the log would fill up.
    const Outcome outcome =
        testsupport::sandboxed({"--dev", "/dev"}, TRACE_CLIENT, {"forks"}).run();
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
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
        const Outcome outcome = trace("1", "text");
        EXPECT_EQ(outcome.err,
                  "qeltrace: ignoring '" + output + "' in QELTRACE_OUTPUT: " + why + "\n");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(logged(), SizeIs(2));
    }
}

TEST_F(SystemLog, MayBeMissing)
{
    setOutput("syslog");
    const Outcome outcome =
        testsupport::sandboxed({"--dev", "/dev"}, TRACE_CLIENT, {"channel", "1", "text"}).run();
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

} // namespace
