#include "HardwareCode.h"

#include "Hardware.h"
#include "Text.h"

namespace hardwarecode
{

std::string bytesOf(const os::bsp::NxuHwCode& code)
{
    std::string bytes;
    for (const std::int32_t word : code.word) {
        bytes.push_back(static_cast<char>(word));
    }
    return bytes;
}

std::string textOf(const std::string& bytes)
{
    return hexText(bytes);
}

std::optional<std::string> parse(const std::string& text)
{
    return text.size() == 2 * hardware::HardwareCodeSize ? bytesOfHex(text) : std::nullopt;
}

} // namespace hardwarecode
