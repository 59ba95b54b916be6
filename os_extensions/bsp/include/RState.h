/**
 * @file
 * @brief R-states: the revision labels of hardware and software items.
 *
 * An R-state is a text such as "R9AC" or "R1A01": "R", a number, one to four letters that encode a
 * second number, and up to three digits. Its version is major.minor.verification: "R9AC" is 9.21.0,
 * "R1A01" is 1.0.1. Verification 0 means that there is none.
 *
 * No function refuses a text that is no R-state: the trace channel "bsp.rstate" says at level 1
 * what is wrong with it, and the version is what could be read until there, starting from 0.0.0.
 * Numbers too large for 32 bits are read as 2147483647; counting beyond that wraps.
 *
 * A null text to be read counts as an empty one; where a text is to be written, or a name is to be
 * found, null makes the function return 0.
 *
 * All functions may be called from any thread; one RState object must not be changed by one thread
 * while another uses it.
 */
#ifndef BSP_RSTATE_H
#define BSP_RSTATE_H

#include "BspExport.h"

#include <stdint.h>

/** Room to keep for the text of an R-state. */
enum
{
    RState_MaxRStateLen = 12
};

/** Ways to step an R-state. Values cross the C interface and are never renumbered. */
#define RSTATE_INCREMENT_TYPE_ROWS(ROW, ENUM)                                                      \
    ROW(ENUM, Auto) ROW(ENUM, Revision) ROW(ENUM, Minor) ROW(ENUM, Major)

#define RSTATE_C_ENUMERATOR(ENUM, NAME) RState_##ENUM##_##NAME,
#define RSTATE_ENUMERATOR(ENUM, NAME) NAME,

#ifdef __cplusplus

#include <cstddef>
#include <iosfwd>
#include <string>

/**
 * Ways to step an R-state.
 *
 * - Auto: the next verification if there is one, otherwise the next minor.
 * - Revision: the next verification if there is one, otherwise no change.
 * - Minor: the next minor; an existing verification restarts at 1.
 * - Major: the next major, minor back to 0; an existing verification restarts at 1.
 * - EndOfList: no way; it ends the list.
 *
 * In C `RState_IncrementType_Auto` and so on.
 */
enum class IncrementType : int
{
    RSTATE_INCREMENT_TYPE_ROWS(RSTATE_ENUMERATOR, IncrementType) EndOfList
};

struct GT_TraceRecord;

/** An R-state as text and as version; a plain value. */
class BSP_API RState
{
public:
    static constexpr int32_t MaxMinorSize1Char = 20;      /**< Minors written with one letter. */
    static constexpr int32_t MaxMinorSize2Chars = 340;    /**< First minor of three letters. */
    static constexpr int32_t MaxMinorSize3Chars = 5460;   /**< First minor of four letters. */
    static constexpr int32_t MaxMinorSize4Chars = 107860; /**< One past the largest minor. */
    static constexpr int32_t MaxMinorPos1 = 20;           /**< Alphabet size, first letter. */
    static constexpr int32_t MaxMinorPos2 = 16;           /**< Alphabet size, second letter. */
    static constexpr int32_t MaxMinorPos3 = 16;           /**< Alphabet size, third letter. */
    static constexpr int32_t MaxMinorPos4 = 20;           /**< Alphabet size, fourth letter. */
    static constexpr int32_t MaxRStateLen = RState_MaxRStateLen; /**< Room to keep for a text. */

    /** Holds the text as given, and the version that can be read from it. */
    RState(const std::string& text); // NOLINT(google-explicit-constructor): a text is an R-state

    /** The same for a C text; null counts as an empty one. */
    explicit RState(const char* text);

    /** Holds the version and its text. The numbers are not checked. */
    RState(int32_t major, int32_t minor, int32_t verification);

    /** The text. It belongs to the object and holds until the object changes. */
    const std::string& getText() const { return m_text; }
    int32_t getMajor() const { return m_major; }               /**< The number after "R". */
    int32_t getMinor() const { return m_minor; }               /**< The letters' number. */
    int32_t getVerification() const { return m_verification; } /**< 0 when there is none. */

    /** Works the version out from the text. Returns whether the text is an R-state. */
    bool updateVersion();

    /** Rebuilds the text from the version. Returns true. */
    bool updateRState();

    /** Carries a verification of 1000 into the minor and a minor of 107860 into the major. */
    void normalizeVersion();

    /** Steps the R-state and rebuilds its text; a type that is none leaves both as they are. */
    void increment(IncrementType type);

    /**
     * Whether this version is older. One without a verification, 0, is neither older nor newer than
     * one that differs from it in the verification only.
     *
     * This is no strict weak order where labels with and without verification are mixed ("R1A" is
     * equal to "R1A01" and to "R1A02", which are not equal): do not sort or search by it.
     */
    bool operator<(const RState& other) const;

    /** Whether the versions are equal; verification 0 equals every verification. */
    bool operator==(const RState& other) const;

    /**
     * Index of a letter in the alphabet of its position.
     *
     * @param letter    'A' to 'Z'; one that the alphabet lacks counts as the next that it has, and
     *                  any other character as the first
     * @param position  1 to 4
     */
    static int getMinorIndex(char letter, int position);

    /**
     * The letter at an index of a position's alphabet. Outside the alphabet: the character before
     * "A" for a negative index, and those that follow "Z" from the alphabet's size on.
     *
     * @param position  1 to 4
     */
    static char getMinorChar(int index, int position);

private:
    BSP_LOCAL RState(const char* text, std::size_t length);

    std::string m_text;
    int32_t m_major = 0;
    int32_t m_minor = 0;
    int32_t m_verification = 0;

    BSP_LOCAL static GT_TraceRecord m_trace;
};

/** Writes the text. */
BSP_API std::ostream& operator<<(std::ostream& stream, const RState& rstate);

extern "C"
{
#else

/** Ways to step an R-state; any other value is refused. */
typedef int IncrementType;
enum
{
    RSTATE_INCREMENT_TYPE_ROWS(RSTATE_C_ENUMERATOR, IncrementType) RState_IncrementType_EndOfList
};

#endif

    /**
     * Reads the version of an R-state.
     *
     * @param major         not null, like the two that follow
     * @param minor         see above
     * @param verification  receives 0 when the text has none
     * @return 1, also for a text that is no R-state; then the version is what could be read
     */
    BSP_API int RState_toVersion(const char* rstate, int* major, int* minor, int* verification);

    /**
     * Writes the text of a version.
     *
     * @param rstate  receives the text and a NUL; its capacity, RState::MaxRStateLen or more, is
     *                not checked
     * @return 1
     */
    BSP_API int RState_fromVersion(char* rstate, int major, int minor, int verification);

    /**
     * Compares two R-states; verification 0 equals every verification.
     * @return -1 when @p a is older, 0 when they are equal, 1 otherwise
     */
    BSP_API int RState_compare(const char* a, const char* b);

    /**
     * Steps an R-state in place.
     *
     * @param rstate  the text, which is replaced
     * @param size    bytes that @p rstate holds
     * @param type    how to step; a value that is no type leaves the text as it is
     * @return 1, or 0 with the text unchanged when the new text and its NUL need more than @p size
     */
    BSP_API int RState_increment(char* rstate, unsigned int size, IncrementType type);

    /**
     * Steps an R-state in place, the way given by name.
     *
     * @param typeName  "Auto", "Revision", "Minor" or "Major"
     * @return as RState_increment, and 0 with the text unchanged for any other name
     */
    BSP_API int RState_increment2(char* rstate, unsigned int size, const char* typeName);

    /** The name of a way to step; "EndOfList" for any other number. A static text. */
    BSP_API const char* RState_incrementTypeName(int type);

#ifdef __cplusplus
}
#endif

#undef RSTATE_ENUMERATOR
#undef RSTATE_C_ENUMERATOR
/* The list is for the library and its tool. */
#ifndef BSP_KEEP_ROWS
#undef RSTATE_INCREMENT_TYPE_ROWS
#endif

#endif
