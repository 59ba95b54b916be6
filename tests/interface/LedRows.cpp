#include "RowBuilders.h"

#include <cerrno>
#include <csignal>

namespace interface
{

namespace
{

const std::string Led = "bsp.led 1 ";

} // namespace

std::vector<FailureRow> ledRows()
{
    const std::string set = "Led_setState";
    const std::string without = "Led_setState without the attribute";
    const std::string state = "/sys/class/leds/red/korvanta_state";
    const std::string trigger = "/sys/class/leds/red/trigger";
    const std::string failed = Led + "Led_open: Failed to enable Korvanta LED trigger.";
    const std::string closing = Led + "Led_close(@f): close failed. errno = @e.";
    const std::string partial = "bsp.led 3 Led_write(): Partial write: 1 bytes written. ";
    const std::string tooLong = "): Name too long. Please increase ";
    const auto fails = [](FailureRow row) { return withAnswer(std::move(row), "-1"); };
    const auto noLonger = [&](FailureRow row) {
        row.error = EINVAL;
        return fails(std::move(row));
    };
    return {
        onCase(without.c_str(), "-1",
               {Led + "Led_open: open failed. errno = No such file or directory. ledFilename = " +
                state + "."}),
        withEnd(onCase("Led_setState of no LED", "", {}), 128 + SIGABRT,
                "`led < NoOfLeds' failed."),
        withEnd(onCase("Led_setState of no state", "", {}), 128 + SIGABRT,
                "`state < NoOfLedStates' failed."),
        withEnd(onCase("Led_objectToName of no LED", "", {}), 128 + SIGABRT,
                "`led < NoOfLeds' failed."),
        withEnd(onCase("Led_stateObjectToStateName of no state", "", {}), 128 + SIGABRT,
                "`state < NoOfLedStates' failed."),
        withEnd(onCase("Led_nameToObject of no text", "", {}), 128 + SIGABRT,
                "`name != 0' failed."),
        withEnd(onCase("Led_stateNameToStateObject of no text", "", {}), 128 + SIGABRT,
                "`name != 0' failed."),

        withErrno(fails(onCall({without}, "open", 2, 2,
                               {Led +
                                    "Led_enableTrigger: open failed. errno = @e. "
                                    "triggerFilename = " +
                                    trigger + ".",
                                failed}))),
        withErrno(fails(
            onCall({without}, "open", 3, 3,
                   {Led + "Led_open: open failed. errno = @e. ledFilename = " + state + "."}))),
        onCall({without}, "write", 1, 1, {partial + "7 left to write"}, Fault::IsShort),
        withErrno(withValues(fails(onCall({without}, "write", 1, 1, {failed}, Fault::Fails)),
                             {EIO, ENOSPC, EAGAIN, ENODEV})),
        withErrno(fails(onCall({without}, "close", 1, 1, {closing, failed}))),
        noLonger(onCall({without}, "snprintf", 1, 1,
                        {Led + "Led_open(" + state + tooLong + "ledFilename array size."})),
        noLonger(
            onCall({without}, "snprintf", 2, 2,
                   {Led + "Led_enableTrigger(" + trigger + tooLong + "triggerFilename array size.",
                    failed})),

        onCall({set}, "write", 1, 1, {partial + "3 left to write"}, Fault::IsShort),
        withErrno(withValues(fails(onCall({set}, "write", 1, 1, {}, Fault::Fails)),
                             {EIO, ENOSPC, EAGAIN, ENODEV})),
        withErrno(fails(onCall({set}, "close", 1, 1, {closing}))),
        noLonger(onCall({set}, "snprintf", 1, 1,
                        {Led + "Led_open(/sys/class/leds/yellow/korvanta_state" + tooLong +
                         "ledFilename array size."})),
    };
}

} // namespace interface
