#include "Led.h"

#include "ErrnoText.h"
#include "GtMessage.h"
#include "Hardware.h"
#include "LedSteps.h"

// The assertions are part of the interface: they abort in every build type.
#undef NDEBUG
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace
{

GT_TraceRecord ledTrace{TraceRecordStartLevel, "bsp.led"};

struct Name
{
    unsigned int number;
    const char* text;
};

constexpr Name ledNames[] = {
    {Led_Yellow, "yellow"},
    {Led_Red, "red"},
    {Led_Green, "green"},
};

/** Also the texts that the LED driver takes. */
constexpr Name stateNames[] = {
    {Led_SteadyOff, "steady_off"},
    {Led_SteadyOn, "steady_on"},
    {Led_StandbyHot, "standby_hot"},
    {Led_StandbyCold, "standby_cold"},
    {Led_Slow, "slow"},
    {Led_Fast, "fast"},
    {Led_Interrupting, "interrupting"},
};

/** Whether there is a row with a text for each number, in their order. */
// not counted: the compiler runs it
template <std::size_t Size> constexpr bool isComplete(const Name (&names)[Size], std::size_t count)
{
    for (std::size_t i = 0; i < Size; ++i) {
        if (names[i].number != i || names[i].text == nullptr) {
            return false;
        }
    }
    return Size == count;
}
static_assert(isComplete(ledNames, NoOfLeds), "a name for each Led_Object, in their order");
static_assert(isComplete(stateNames, NoOfLedStates), "a name for each Led_State, in their order");

/** The first name that the text begins with; the table's size when there is none. */
template <std::size_t Size> unsigned int findName(const Name (&names)[Size], const char* text)
{
    for (const Name& name : names) {
        if (std::strncmp(text, name.text, std::strlen(name.text)) == 0) {
            return name.number;
        }
    }
    return Size;
}

/** Writes the text and closes the descriptor in any case. Returns 0, or -1 with errno set. */
int writeAndClose(int fd, const char* text)
{
    if (led::Led_write(fd, text, static_cast<unsigned int>(std::strlen(text))) == -1) {
        const syscalls::ErrnoKeeper keeper;
        led::Led_close(fd);
        return -1;
    }
    return led::Led_close(fd);
}

} // namespace

namespace led
{

bool buildPath(Path& path, const char* name, const char* file)
{
    const int length =
        std::snprintf(path.data(), path.size(), "%s/%s/%s", hardware::LedsDirectory, name, file);
    return length >= 0 && static_cast<std::size_t>(length) < path.size();
}

int Led_open(unsigned int led, const char* name)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, static_cast<int>(led));
    Path ledFilename{};
    if (!buildPath(ledFilename, name, hardware::LedStateFile)) {
        TRACE_PRINTF(ledTrace, trace::Error,
                     "%s(%s): Name too long. Please increase ledFilename array size.\n", __func__,
                     ledFilename.data());
        errno = EINVAL;
        return -1;
    }
    int fd = open(ledFilename.data(), O_WRONLY | O_CLOEXEC);
    if (fd != -1) {
        return fd;
    }
    // The attribute is there only while the trigger is active.
    if (Led_enableTrigger(led, name) == -1) {
        TRACE_PRINTF(ledTrace, trace::Error, "%s: Failed to enable Korvanta LED trigger.\n",
                     __func__);
        return -1;
    }
    fd = open(ledFilename.data(), O_WRONLY | O_CLOEXEC);
    if (fd == -1) {
        TRACE_PRINTF(ledTrace, trace::Error, "%s: open failed. errno = %s. ledFilename = %s.\n",
                     __func__, syscalls::errnoText(errno).c_str(), ledFilename.data());
    }
    return fd;
}

int Led_enableTrigger(unsigned int led, const char* name)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, static_cast<int>(led));
    Path triggerFilename{};
    if (!buildPath(triggerFilename, name, hardware::LedTriggerFile)) {
        TRACE_PRINTF(ledTrace, trace::Error,
                     "%s(%s): Name too long. Please increase triggerFilename array size.\n",
                     __func__, triggerFilename.data());
        errno = EINVAL;
        return -1;
    }
    const int fd = open(triggerFilename.data(), O_WRONLY | O_CLOEXEC);
    if (fd == -1) {
        TRACE_PRINTF(ledTrace, trace::Error, "%s: open failed. errno = %s. triggerFilename = %s.\n",
                     __func__, syscalls::errnoText(errno).c_str(), triggerFilename.data());
        return -1;
    }
    return writeAndClose(fd, hardware::LedTrigger);
}

int Led_write(int fd, const char* buf, unsigned int size)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d, %p, %d) called\n", __func__, fd,
                 static_cast<const void*>(buf), static_cast<int>(size));
    assert(fd >= 0);
    assert(buf != 0); // NOLINT(modernize-use-nullptr): the text is part of the interface
    unsigned int written = 0;
    for (;;) {
        const auto result = static_cast<int>(write(fd, buf + written, size - written));
        if (result == -1 && errno == EINTR) {
            continue;
        }
        // Nothing written is no failure.
        if (result < 1) {
            return result;
        }
        written += static_cast<unsigned int>(result);
        if (written == size) {
            return result;
        }
        TRACE_PRINTF(ledTrace, trace::Notice,
                     "%s(): Partial write: %d bytes written. %d left to write\n", __func__, result,
                     static_cast<int>(size - written));
    }
}

int Led_close(int fd)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, fd);
    assert(fd >= 0);
    if (close(fd) == -1) {
        TRACE_PRINTF(ledTrace, trace::Error, "%s(%d): close failed. errno = %s.\n", __func__, fd,
                     syscalls::errnoText(errno).c_str());
        return -1;
    }
    return 0;
}

} // namespace led

int Led_setState(unsigned int led, unsigned int state)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d,%d) called\n", __func__, static_cast<int>(led),
                 static_cast<int>(state));
    assert(led < NoOfLeds);
    assert(state < NoOfLedStates);
    const int fd = led::Led_open(led, ledNames[led].text);
    return fd == -1 ? -1 : writeAndClose(fd, stateNames[state].text);
}

unsigned int Led_nameToObject(const char* name)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s called\n", __func__);
    assert(name != 0); // NOLINT(modernize-use-nullptr): the text is part of the interface
    return findName(ledNames, name);
}

const char* Led_objectToName(unsigned int led)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, static_cast<int>(led));
    assert(led < NoOfLeds);
    return ledNames[led].text;
}

unsigned int Led_stateNameToStateObject(const char* name)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s called\n", __func__);
    assert(name != 0); // NOLINT(modernize-use-nullptr): the text is part of the interface
    return findName(stateNames, name);
}

const char* Led_stateObjectToStateName(unsigned int state)
{
    TRACE_PRINTF(ledTrace, trace::Entry, "%s(%d) called\n", __func__, static_cast<int>(state));
    assert(state < NoOfLedStates);
    return stateNames[state].text;
}
