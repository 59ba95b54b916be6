#include "TraceOutput.h"
#include "ErrnoText.h"
#include "LineWriter.h"
#include "OpenFile.h"
#include "StandardError.h"
#include "SystemLog.h"
#include "TraceLine.h"
#include "TraceSettings.h"

#include <atomic>
#include <cerrno>

namespace qeltrace
{

namespace
{

// Lines that there was no room for and that nobody has been told about.
std::atomic<unsigned long> lostLines{0};

/** Appends to the file; opened for each line, so that the file can be moved away at any time. */
bool appendToFile(const std::string& fileName, HvxTraceLevel level, const std::string& line)
{
    // A named pipe that nobody reads must not make anyone wait.
    const syscalls::FileDescriptor file =
        openFile(fileName, O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY | O_NONBLOCK, 0666);
    if (file.isOpen()) {
        return writeLine(file.get(), line);
    }
    const int error = errno;
    static std::atomic<bool> reported{false};
    if (!reported.exchange(true)) {
        reportBadSetting("QELTRACE_OUTPUT", fileName, syscalls::errnoText(error).c_str());
    }
    return sendToSystemLog(level, line);
}

/** Returns false when the line is lost. */
bool put(const TraceSettings& settings, HvxTraceLevel level, const std::string& line)
{
    if (settings.output() == TraceSettings::Output::StandardError) {
        return writeToStandardError(line);
    }
    if (settings.output() == TraceSettings::Output::File) {
        return appendToFile(settings.fileName(), level, line);
    }
    return sendToSystemLog(level, line);
}

void tellOfLostLines(const TraceSettings& settings)
{
    unsigned long lost = lostLines.load();
    if (lost == 0) {
        return;
    }
    constexpr HvxTraceLevel Error = 1;
    constexpr HvxTraceHeader Here{__FILE__, __LINE__, "tellOfLostLines"};
    const std::string line =
        makeLine("qeltrace", Error, Here, "messages lost: " + std::to_string(lost));
    // Others may be about to tell the same, or may have lost more.
    if (lostLines.compare_exchange_strong(lost, 0) && !put(settings, Error, line)) {
        lostLines += lost;
    }
}

} // namespace

void emit(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
          const std::string& text)
{
    const TraceSettings& settings = TraceSettings::instance();
    if (settings.output() == TraceSettings::Output::None) {
        return;
    }
    const std::string line = makeLine(channel, level, header, text);
    tellOfLostLines(settings);
    if (!put(settings, level, line)) {
        ++lostLines;
    }
}

} // namespace qeltrace
