#ifndef TOOLS_COMMON_READING_H
#define TOOLS_COMMON_READING_H

#include <optional>
#include <string>
#include <utility>

/** What was read of a board, or in words why it is not known. */
template <typename Value> class Reading
{
public:
    /** Not asked for. */
    Reading() : m_reason("not looked at") {}
    Reading(Value value) // NOLINT(google-explicit-constructor): a value is a reading
        : m_value(std::move(value))
    {}

    static Reading unknown(const std::string& reason)
    {
        Reading reading;
        reading.m_reason = reason;
        return reading;
    }

    bool isKnown() const { return m_value.has_value(); }
    const Value& operator*() const { return *m_value; }
    const Value* operator->() const { return &*m_value; }
    /** Empty for what is known. */
    const std::string& reason() const { return m_reason; }

private:
    std::optional<Value> m_value;
    std::string m_reason;
};

#endif
