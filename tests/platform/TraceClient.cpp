/**
 * @file
 * @brief Uses the trace library in a process of its own.
 *
 *     CHANNEL LEVEL TEXT   writes a message on each of the library's interfaces
 *     many COUNT           does so that often
 *     reuse FILE           opens the file and writes a message; status 3 when the file has another
 *                          descriptor than standard error's
 *     forks                forks again and again while another thread writes; each new process
 *                          writes a message on the channel "forked"
 */
#include "HvxTrace.h"
#include "Program.h"

#include <atomic>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr HvxTraceHeader Header{"file.cpp", 7, "main"};

int writeMessages(const std::string& name, HvxTraceLevel level, const std::string& text)
{
    HvxTrace channel(name, 3);
    channel.beginLogMsg(level, Header);
    channel.logMsgData(text.data(), static_cast<unsigned int>(text.size()));
    channel.endLogMsg();

    GT_TraceRecord record{TraceRecordStartLevel, name.c_str()};
    GT_printf2(&record, level, &Header, "%s\n", text.c_str());
    return 0;
}

/** Writes a message on a channel that the process may not know yet. */
void write(const std::string& name)
{
    GT_TraceRecord record{TraceRecordStartLevel, name.c_str()};
    GT_printf2(&record, 1, &Header, "text\n");
}

int forkWhileAThreadWrites()
{
    std::atomic<bool> done{false};
    std::thread thread([&done] {
        for (int i = 0; !done; ++i) {
            write("channel " + std::to_string(i % 1000));
        }
    });
    int status = 0;
    for (int i = 0; i < 100; ++i) {
        const pid_t process = ::fork();
        if (process == 0) {
            write("forked");
            ::_exit(0);
        }
        status |= testsupport::waitFor(process);
    }
    done = true;
    thread.join();
    return status;
}

int writeManyMessages(int count)
{
    for (int i = 0; i < count; ++i) {
        writeMessages("channel", 1, "text");
    }
    return 0;
}

int writeWithAFileForStandardError(const char* file)
{
    const int fd = ::open(file, O_WRONLY | O_CLOEXEC);
    write("channel");
    return fd == STDERR_FILENO ? 0 : 3;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string first = argv[1];
    if (argc == 2 && first == "forks") {
        return forkWhileAThreadWrites();
    }
    if (argc == 3 && first == "many") {
        return writeManyMessages(std::stoi(argv[2]));
    }
    if (argc == 3 && first == "reuse") {
        return writeWithAFileForStandardError(argv[2]);
    }
    return writeMessages(first, static_cast<HvxTraceLevel>(std::stoul(argv[2])), argv[3]);
}
