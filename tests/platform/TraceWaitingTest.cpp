#include "FileDescriptor.h"
#include "Nodes.h"
#include "OtherUser.h"
#include "Program.h"
#include "SystemCalls.h"
#include "SystemLog.h"
#include "TraceTest.h"

#include <array>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <termios.h>

namespace
{

using namespace testing;
using namespace testsupport;

/** Two connected descriptors: what is written to the second is read from the first. */
struct Connection
{
    explicit Connection(const std::array<int, 2>& descriptors)
        : reader(descriptors[0]), writer(descriptors[1])
    {}

    static Connection pipe()
    {
        std::array<int, 2> descriptors{-1, -1};
        EXPECT_EQ(::pipe2(descriptors.data(), O_CLOEXEC), 0);
        return Connection(descriptors);
    }
    static Connection sockets()
    {
        std::array<int, 2> descriptors{-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, descriptors.data()), 0);
        return Connection(descriptors);
    }

    syscalls::FileDescriptor reader;
    syscalls::FileDescriptor writer;
};

/** All up to the end, or up to where it would wait. */
std::string readAll(const syscalls::FileDescriptor& file)
{
    std::string all;
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = ::read(file.get(), buffer.data(), buffer.size())) > 0) {
        all.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return all;
}

std::string readWithoutWaiting(const syscalls::FileDescriptor& file)
{
    ::fcntl(file.get(), F_SETFL, O_NONBLOCK);
    return readAll(file);
}

/** The line that tells of lost messages. */
auto tellsOf(std::size_t lost)
{
    return MatchesRegex("[-0-9T:.]+Z qeltrace[[]" + std::to_string(::getpid()) +
                        "[]] 1 .*platform/linux/qeltrace/TraceOutput[.]cpp:[0-9]+ messages lost: " +
                        std::to_string(lost));
}

class TraceWaiting : public TraceTest
{
protected:
    static constexpr std::size_t Count = 200;

    TraceWaiting() { setOutput("stderr"); }

    void trace(const std::string& text) { GT_printf2(&m_record, 1, &Header, "%s\n", text.c_str()); }
    /** Writes more than pipes and sockets take. */
    void writeMany()
    {
        for (std::size_t i = 0; i < Count; ++i) {
            trace(std::string(4000, 'x'));
        }
    }

    /** Checks that whole lines came, and that the next message tells how many did not. */
    void expectTheFirst(const syscalls::FileDescriptor& reader,
                        const std::function<void()>& writeNext) const
    {
        const std::string first = readWithoutWaiting(reader);
        EXPECT_THAT(first, EndsWith("x\n"));
        const std::vector<std::string> written = linesOf(first);
        EXPECT_GT(written.size(), 0U);
        EXPECT_LT(written.size(), Count);
        for (const std::string& line : written) {
            EXPECT_THAT(line, EndsWith(" " + std::string(4000, 'x')));
        }
        writeNext();
        EXPECT_THAT(linesOf(readAll(reader)),
                    ElementsAre(tellsOf(Count - written.size()), EndsWith(" text")));
        writeNext();
        EXPECT_THAT(linesOf(readAll(reader)), ElementsAre(EndsWith(" text")));
    }

    /** The same of standard error, when that is the connection. */
    void expectTheFirst(const Connection& connection)
    {
        const auto withConnection = [&](const std::function<void()>& work) {
            const StandardErrorAs standardError(connection.writer.get());
            work();
        };
        withConnection([this] { writeMany(); });
        expectTheFirst(connection.reader, [&] { withConnection([this] { trace("text"); }); });
    }

private:
    GT_TraceRecord m_record{TraceRecordStartLevel, "channel"};
};

TEST_F(TraceWaiting, IsNotForAFullPipe)
{
    const Connection pipe = Connection::pipe();
    expectTheFirst(pipe);
    EXPECT_EQ(::fcntl(pipe.writer.get(), F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(TraceWaiting, IsNotForAFullPipeOfAnotherUser)
{
    if (::getuid() != 0) {
        GTEST_SKIP() << "only root becomes another user";
    }
    const Connection pipe = Connection::pipe();
    EXPECT_TRUE(holdsInCopy([&] {
        becomeOrdinaryUser();
        ::alarm(30);
        ::dup2(pipe.writer.get(), STDERR_FILENO);
        writeMany();
        return true;
    }));
    EXPECT_THAT(readWithoutWaiting(pipe.reader), EndsWith(" " + std::string(4000, 'x') + '\n'));
}

TEST_F(TraceWaiting, IsNotForAFullSocket)
{
    expectTheFirst(Connection::sockets());
}

TEST_F(TraceWaiting, IsNotForAStoppedTerminal)
{
    const Terminal terminal;
    ASSERT_NE(terminal.path(), "");
    const syscalls::FileDescriptor screen(
        ::open(terminal.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(::tcflow(screen.get(), TCOOFF), 0);
    const StandardErrorAs standardError(screen.get());
    trace("first");
    trace("second");
    EXPECT_EQ(readWithoutWaiting(terminal.user()), "");
    ASSERT_EQ(::tcflow(screen.get(), TCOON), 0);
    trace("text");
    EXPECT_THAT(linesOf(readAll(terminal.user())),
                ElementsAre(EndsWith(" messages lost: 2\r"), EndsWith(" text\r")));
}

TEST_F(TraceWaiting, IsNotForAFullNamedPipe)
{
    setOutput(file);
    makeNode(S_IFIFO, file);
    const syscalls::FileDescriptor reader(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    writeMany();
    expectTheFirst(reader, [&] { trace("text"); });
}

TEST_F(TraceWaiting, IsNotForAFullDisk)
{
    setOutput("/dev/full");
    trace("text");
    SUCCEED();
}

TEST_F(TraceWaiting, KeepsMessagesOfManyProcessesWholeInAPipe)
{
    Connection pipe = Connection::pipe();
    std::vector<pid_t> processes;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        processes.push_back(startCopy([&] {
            ::dup2(pipe.writer.get(), STDERR_FILENO);
            for (int i = 0; i < 200; ++i) {
                trace(std::string(3000, letter));
            }
            return true;
        }));
    }
    pipe.writer = syscalls::FileDescriptor(-1);
    const std::string all = readAll(pipe.reader);
    for (const pid_t process : processes) {
        EXPECT_EQ(waitFor(process), 0);
    }
    std::size_t whole = 0;
    for (const std::string& line : linesOf(all)) {
        const std::string text = line.substr(line.find(' ', line.find("] 1 ") + 4) + 1);
        whole += text == std::string(3000, text.front()) ? 1 : 0;
        EXPECT_TRUE(text == std::string(3000, text.front()) ||
                    text.rfind("messages lost: ", 0) == 0)
            << line;
    }
    EXPECT_GE(whole, 16U);
}

/** The trace library with a system log that is read when the test says so. */
class WaitingSystemLog : public TraceWaiting
{
protected:
    WaitingSystemLog()
    {
        setOutput("syslog");
        systemcalls::hooks().connect = [this](int fd, const sockaddr* address, socklen_t /*size*/) {
            EXPECT_STREQ(reinterpret_cast<const sockaddr_un*>(address)->sun_path, "/dev/log");
            if (meanwhile) {
                std::exchange(meanwhile, nullptr)();
            }
            const sockaddr_un other = addressOf(systemLog);
            return systemcalls::real().connect(fd, reinterpret_cast<const sockaddr*>(&other),
                                               sizeof other);
        };
    }
    ~WaitingSystemLog() override { systemcalls::hooks() = {}; }

    syscalls::FileDescriptor listen(int type) const { return makeSystemLog(systemLog, type); }

    /** A message as the system log gets it. */
    static std::string message(const std::string& text)
    {
        return "<11>platform_test: [-0-9T:.]+Z channel[[]" + std::to_string(::getpid()) +
               "[]] 1 folder/file[.]cpp:42 " + text;
    }

    /** What the library connects to. */
    const std::string systemLog = directory.file("log");
    /** Done once, when it connects next. */
    std::function<void()> meanwhile;
};

TEST_F(WaitingSystemLog, MayBeFull)
{
    const syscalls::FileDescriptor log = listen(SOCK_DGRAM);
    constexpr std::size_t Many = 2000;
    for (std::size_t i = 0; i < Many; ++i) {
        trace("early");
    }
    const std::vector<std::string> first = receiveAll(log);
    EXPECT_GT(first.size(), 0U);
    EXPECT_LT(first.size(), Many);
    EXPECT_THAT(first, Each(MatchesRegex(message("early"))));
    trace("text");
    EXPECT_THAT(receiveAll(log), ElementsAre(AllOf(StartsWith("<11>platform_test: "),
                                                   EndsWith(" messages lost: " +
                                                            std::to_string(Many - first.size()))),
                                             MatchesRegex(message("text"))));
}

TEST_F(WaitingSystemLog, MayBeAStream)
{
    const syscalls::FileDescriptor log = listen(SOCK_STREAM);
    ASSERT_EQ(::listen(log.get(), 2), 0);
    trace("first");
    trace("second");
    for (const char* text : {"first", "second"}) {
        const syscalls::FileDescriptor connection(
            ::accept4(log.get(), nullptr, nullptr, SOCK_CLOEXEC));
        const std::string sent = readWithoutWaiting(connection);
        ASSERT_THAT(sent, Not(IsEmpty()));
        EXPECT_EQ(sent.back(), '\0');
        EXPECT_THAT(sent.substr(0, sent.size() - 1), MatchesRegex(message(text)));
    }
}

TEST_F(WaitingSystemLog, MayBeAStreamThatNobodyAccepts)
{
    const syscalls::FileDescriptor log = listen(SOCK_STREAM);
    ASSERT_EQ(::listen(log.get(), 1), 0);
    writeMany();
    const syscalls::FileDescriptor connection(::accept4(log.get(), nullptr, nullptr, SOCK_CLOEXEC));
    EXPECT_TRUE(connection.isOpen());
}

TEST_F(WaitingSystemLog, MayComeLater)
{
    trace("nobody listens");
    const syscalls::FileDescriptor log = listen(SOCK_DGRAM);
    trace("text");
    EXPECT_THAT(receiveAll(log),
                ElementsAre(EndsWith(" messages lost: 1"), MatchesRegex(message("text"))));
}

TEST_F(WaitingSystemLog, HearsOfALostMessageFromOneThreadAlone)
{
    trace("nobody listens");
    const syscalls::FileDescriptor log = listen(SOCK_DGRAM);
    // As another thread, which writes while this one tells of the loss.
    meanwhile = [&] { trace("other"); };
    trace("text");
    trace("later");
    EXPECT_THAT(receiveAll(log),
                ElementsAre(MatchesRegex(message("other")), EndsWith(" messages lost: 1"),
                            MatchesRegex(message("text")), MatchesRegex(message("later"))));
}

} // namespace
