#ifndef FUZZ_MODELS_RSTATEMODEL_H
#define FUZZ_MODELS_RSTATEMODEL_H

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz
{

/**
 * R-states by their definition, worked out in another way than the layer does: searched for in the
 * alphabets, in 64 bits, with the C library's functions for numbers.
 */
struct RStateModel
{
    std::string text;
    std::int64_t major = 0;
    std::int64_t minor = 0;
    std::int64_t verification = 0;

    /** As the constructors; what they trace is added to the messages. */
    static RStateModel ofText(const std::string& text, std::vector<std::string>& messages);
    static RStateModel ofVersion(int major, int minor, int verification,
                                 std::vector<std::string>& messages);

    bool parse(std::vector<std::string>& messages);
    void format();
    void increment(int type, std::vector<std::string>& messages);
    bool isBefore(const RStateModel& other, std::vector<std::string>& messages) const;
    bool isEqual(const RStateModel& other, std::vector<std::string>& messages) const;
};

} // namespace fuzz

#endif
