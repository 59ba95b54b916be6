/**
 * @file
 * @brief Interface of the platform's trace library, libqeltrace.so.
 *
 * The library offers two interfaces: the class HvxTrace, which builds a message from pieces, and
 * the function GT_printf2, which formats one by the rules of printf. Both write a message only
 * where the channel's current level is at least the message's level; callers test that themselves,
 * before they format anything (see trace/).
 */
#ifndef PLATFORM_HVXTRACE_H
#define PLATFORM_HVXTRACE_H

#include <stdint.h>

/** Level of a message or of a channel: 1 is an error, higher levels say more. */
typedef uint32_t HvxTraceLevel;

/** Where a message is written in the source; one static record for each message site. */
struct HvxTraceHeader
{
    const char* file;     /**< Source file, as the compiler names it. */
    int32_t line;         /**< Line in that file. */
    const char* function; /**< Bare name of the function. */
};

/**
 * Channel of a module that traces through GT_printf2.
 *
 * It is initialised statically with TraceRecordStartLevel, which passes every level test, so that
 * the first message reaches the library; the library then writes the channel's level into it. The
 * record must therefore be writable.
 */
struct GT_TraceRecord
{
    uint32_t level;   /**< Current level, kept by the library after the first message. */
    const char* name; /**< Name of the channel. */
};

#ifdef __cplusplus
#include <string>

/** Level word of a GT_TraceRecord that the library has not seen yet: level 3 with bit 0x1000. */
constexpr uint32_t TraceRecordStartLevel = 0x1003;

/** State of a channel, kept by the library. */
struct HvxTraceState
{
    uint32_t reserved[2]; /**< The library's own. */
    uint32_t level;       /**< The channel's current level; it may change at any time. */
};

/**
 * Channel of a module that builds its messages from pieces.
 *
 * A message is everything between beginLogMsg and endLogMsg of one thread; the library keeps the
 * messages of several threads on one channel apart.
 */
class HvxTrace
{
public:
    /** Opens the channel of that name; @p level holds until the trace service sets another. */
    HvxTrace(const std::string& name, HvxTraceLevel level);
    ~HvxTrace();
    HvxTrace(const HvxTrace&) = delete;
    HvxTrace& operator=(const HvxTrace&) = delete;

    /** Opens one message. */
    void beginLogMsg(HvxTraceLevel level, const HvxTraceHeader& header);
    /** Appends @p length bytes to the open message. */
    void logMsgData(const char* data, unsigned int length);
    /** Appends one character to the open message. */
    void logMsgData(char character);
    /** Closes the open message and emits it. */
    void endLogMsg();

    /** State of the channel; null while the channel is not active. Filled by the library. */
    HvxTraceState* m_state;
};

extern "C"
{
#endif

    /**
     * Formats one message by the rules of printf and emits it.
     *
     * @param record  channel; its level word is settled by the call
     * @param level   level of the message
     * @param header  the message site
     * @param format  printf format, followed by its values
     */
    void GT_printf2(struct GT_TraceRecord* record, HvxTraceLevel level,
                    const struct HvxTraceHeader* header, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
