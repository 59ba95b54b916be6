#include "WarmArea.h"

#include "Text.h"

#include <algorithm>

WarmArea::Block WarmArea::block(std::size_t index) const
{
    const std::size_t offset = index * BlockSize;
    const std::string_view bytes = std::string_view(m_bytes).substr(offset, BlockSize);
    const std::string_view name = bytes.substr(0, NameSize);
    return {index + 1, offset, name.substr(0, name.find('\0')), bytes};
}

std::vector<WarmArea::Block> WarmArea::usedBlocks() const
{
    std::vector<Block> blocks;
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const Block candidate = block(index);
        if (!candidate.name.empty()) {
            blocks.push_back(candidate);
        }
    }
    return blocks;
}

/** Whether the blocks are as the layer leaves them. */
bool WarmArea::isTable() const
{
    bool free = false;
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const std::string_view name = block(index).name;
        if (!name.empty() && (free || name.size() == NameSize)) {
            return false;
        }
        free = name.empty();
    }
    return true;
}

bool WarmArea::hasPlainName() const
{
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const Block candidate = block(index);
        const std::string_view name = candidate.name;
        const std::string_view rest = candidate.bytes.substr(0, NameSize).substr(name.size());
        if (!name.empty() && printable(name) == name && !rest.empty() &&
            rest.find_first_not_of('\0') == std::string_view::npos)
        {
            return true;
        }
    }
    return false;
}

bool WarmArea::hasManyZeros() const
{
    // Four times as many as bytes at random have.
    constexpr std::size_t share = 64;
    const auto zeros = std::count(m_bytes.begin(), m_bytes.end(), '\0');
    return static_cast<std::size_t>(zeros) > m_bytes.size() / share;
}

bool WarmArea::isWritten() const
{
    return isTable() || hasPlainName() || hasManyZeros();
}

std::optional<WarmArea::Block> WarmArea::find(std::string_view name) const
{
    // Programs look for an object up to the first free block.
    for (std::size_t index = 0; index < numberOfBlocks(); ++index) {
        const Block candidate = block(index);
        if (candidate.name.empty()) {
            return std::nullopt;
        }
        if (candidate.name == name) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::optional<std::int32_t> WarmArea::slotId() const
{
    const std::optional<Block> slot = find(os::bsp::dtcm::SlotObjectName);
    if (!slot) {
        return std::nullopt;
    }
    std::int32_t slotId = 0;
    std::copy_n(slot->bytes.data() + NameSize, sizeof slotId, reinterpret_cast<char*>(&slotId));
    return slotId;
}
